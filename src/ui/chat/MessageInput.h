// The field in which a message is written. It grows with its text up to the height of eight usual lines;
// Return submits, Shift and Return breaks the line, and neither happens while an input method is composing.
#pragma once

#include "ui/chat/FieldText.h"

#include <QPlainTextEdit>

class MessageInput : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit MessageInput(QWidget *parent = nullptr);

    // What has been written, with the spaces that do not break, and without what is only being composed.
    QString draft() const;
    // Replaces the draft and puts the cursor behind it.
    void setDraft(const QString &draft);

    // A factor of the usual size of the text.
    void setTextScale(double scale);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {120, sizeHint().height()}; }

Q_SIGNALS:
    void submitted();
    // What was pasted is more than the field can hold.
    void refused();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    int mostLines() const;
    void fit();

    FieldText m_text{*this};
    double m_textScale = 1;
    bool m_composing = false;
};
