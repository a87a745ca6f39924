// A field for a longer text, in a thin rounded frame. It says when the user has edited the text, and only
// then.
#pragma once

#include "ui/chat/FieldText.h"

#include <QPlainTextEdit>

class PromptEditor : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit PromptEditor(QWidget *parent = nullptr);

    // Shows `prompt` unless that is what the field stands for already; the cursor stays where it is as far as
    // the text reaches.
    void showPrompt(const QString &prompt);

Q_SIGNALS:
    void edited(const QString &prompt);
    // What was pasted is more than the field can hold.
    void refused();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    void noticeEdit();
    void drawFrame();

    QString m_prompt; // as it was given, or as the user left it
    QString m_shown;  // what the field holds for it, which has no line endings but one
    FieldText m_text{*this};
    bool m_composing = false;
};
