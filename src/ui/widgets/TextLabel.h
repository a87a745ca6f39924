// A label in one of the text styles and tints. Its text is plain, whatever it looks like, and both follow the
// desktop's font and palette.
#pragma once

#include "ui/widgets/TextStyle.h"
#include "ui/widgets/Tint.h"

#include <QLabel>

class TextLabel : public QLabel
{
    Q_OBJECT

public:
    explicit TextLabel(TextStyle style, Tint tint = Tint::text, QWidget *parent = nullptr);
    explicit TextLabel(const QString &text, TextStyle style = TextStyle::body, Tint tint = Tint::text,
                       QWidget *parent = nullptr);

    // Shows as much of it as a place made for a few sentences does.
    void setText(const QString &text);
    void setTint(Tint tint);
    void setBold();
    void setMonospaced();
    // Breaks lines where the label is too narrow, and lets it become narrower than its longest word.
    void setWrapping();
    void setSelectable();

    QSize minimumSizeHint() const override;

public Q_SLOTS:
    // What the Edit menu asks of the widget that has the focus; both for selectable text.
    void copy();
    void selectAll();

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyFont();

    const TextStyle m_style;
    Tint m_tint;
    bool m_bold = false;
    bool m_monospaced = false;
};
