// The messages of a conversation: read, selected, copied and scrolled, with their buttons. None of it is a
// widget of its own.
#pragma once

#include "ui/chat/transcript/TranscriptCanvas.h"
#include "ui/chat/transcript/TranscriptPointer.h"

class Desktop;

class Transcript : public TranscriptCanvas
{
    Q_OBJECT

public:
    // `desktop` must outlive the view.
    explicit Transcript(Desktop &desktop, QWidget *parent = nullptr);

    // In reading order.
    std::vector<TranscriptButton> buttons(int message)
    {
        return state().layout.body(message).buttons(message);
    }
    const std::optional<TranscriptButton> &focusedButton() const { return state().focused; }
    // Whether the button is there still.
    bool has(const TranscriptButton &button)
    {
        return !state().layout.body(button.message).rect(button).isEmpty();
    }
    // What names the button: its own label, or the words of the link.
    QString label(const TranscriptButton &button);
    // Where the link leads; empty for other buttons.
    QString linkTarget(const TranscriptButton &button);
    // In the viewport's coordinates.
    std::optional<TranscriptButton> buttonAt(QPoint point);
    // Does what clicking the button does.
    void press(const TranscriptButton &button);
    // Brings the button into sight and gives it the keyboard.
    void focusButton(const TranscriptButton &button);

    // What a message says as it is shown: the user's text, or the answer, behind the reasoning while that is
    // open.
    QString messageText(int message);
    // What stands beside it: what is waited for, or how fast it came. May be empty.
    QString messageStatus(int message) { return state().layout.body(message).status(); }
    QString selectedText() { return state().selectedText(); }

    // Named as text widgets name them, by which the Edit menu finds them.
    Q_INVOKABLE void copy();
    Q_INVOKABLE void selectAll();

Q_SIGNALS:
    void regenerateRequested();
    void editRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void offerSelection();
    void openLink(const QString &target);
    void toggleReasoning(int message);
    bool scrollByKey(int key);
    bool scrollCode(int message, int block, int distance);
    bool showLinkTip(const QHelpEvent &event);

    Desktop &m_desktop;
    TranscriptPointer m_pointer;
};
