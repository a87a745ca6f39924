// A field for a longer text, in a thin rounded frame. It says when the user has edited the text, and only
// then.
#pragma once

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

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    QString text() const;
    void noticeEdit();
    void drawFrame();

    QString m_prompt; // as it was given, or as the user left it
    QString m_text;   // what the field holds for it, which has no line endings but one
    bool m_composing = false;
};
