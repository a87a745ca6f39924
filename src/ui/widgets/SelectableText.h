// Plain text that the user can select and copy. It takes the height its lines need at its width, breaks words
// that are too long for it, and leaves the mouse wheel to what is around it.
#pragma once

#include "ui/widgets/TextStyle.h"
#include "ui/widgets/Tint.h"

#include <QTextEdit>

#include <optional>

class SelectableText : public QTextEdit
{
    Q_OBJECT

public:
    explicit SelectableText(TextStyle style, Tint tint = Tint::text, QWidget *parent = nullptr);

    // Shows at most `longest` code units and `mostLines` lines of it. Text that only grows is appended, so
    // that a selection survives.
    void showText(const QString &text, qsizetype longest = 1000, int mostLines = 12);
    void setMonospaced();

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void changeEvent(QEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    void append(const QString &text);
    void applyFont();

    struct Size
    {
        int width = 0;
        int height = 0;
    };

    const TextStyle m_style;
    const Tint m_tint;
    bool m_monospaced = false;
    QString m_text;
    mutable std::optional<Size> m_measured; // as last asked for: layouts ask many times
};
