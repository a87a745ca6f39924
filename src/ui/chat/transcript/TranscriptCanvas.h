// Shows a conversation and follows it as it grows: what is in sight is laid out and painted, what is out of
// sight costs nothing. What the user does to it is the business of Transcript.
#pragma once

#include "core/chat/Conversation.h"
#include "ui/chat/transcript/TranscriptState.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QElapsedTimer>

#include <optional>
#include <vector>

class TranscriptCanvas : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit TranscriptCanvas(QWidget *parent = nullptr);

    // Shows the conversation as it is now, from its end when it is another one than before. Call it after
    // every change, however often: the text of a reply that is being generated is read from where it ended
    // last time, and what several calls within a frame bring is laid out and painted once. Between two calls
    // that both say `isGenerating` only the last message may have changed, by growing at its end.
    void showConversation(const Conversation &conversation, bool isGenerating);

    // A factor of the usual size of the text; the text at the top of the view stays there.
    void setTextScale(double scale);
    // Whether the reply that is generated waits for its model to be loaded into the memory.
    void setLoadsModel(bool loads);

    const TranscriptLayout &transcript() const { return m_state.layout; }
    // Whether everything shown has been laid out; its painting may be due still.
    bool isSettled() const { return !m_isStale; }

    QSize sizeHint() const override { return {600, 400}; }

Q_SIGNALS:
    // Messages have come or gone.
    void messagesChanged();

protected:
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

    TranscriptState &state() { return m_state; }
    const TranscriptState &state() const { return m_state; }

    // Moves the viewport's top there, or as far as it goes.
    void scrollTo(int top);
    // Moves as little as it takes to bring the button into sight.
    void reveal(const TranscriptButton &button);
    // While it is held what is in sight stays where it is, whatever arrives; the end is shown on release.
    void setHeld(bool isHeld);
    // Lays out what has come into sight, and paints everything anew.
    void repaintAll();
    // Whether the keyboard's focus was reached by the keyboard, so that it has to be seen.
    void setKeyboardFocus(bool hasFocus);

private:
    void restyle();
    void scheduleFrame();
    // Lays out what has changed and has it painted, but for the region that is just being painted, if any.
    void frame(const QRegion *painting = nullptr);
    QSize layoutSize() const;
    void updateScrollBar();
    void repaintChanges(const std::vector<VisibleRow> &before, const QRegion *painting);
    void forgetHovered();
    void updateSpinner();
    bool showsFocusRing() const;
    static QString hint();
    void paintHint(QPainter &painter);
    void paintRect(QPainter &painter, const QRect &rect);

    TranscriptState m_state;
    double m_textScale = 1;
    bool m_isHeld = false;
    bool m_mustFollow = false; // the end is to be shown
    bool m_isStale = true;     // the layout has not settled since it was changed
    bool m_isSettingBar = false;
    bool m_hasKeyboardFocus = false;
    bool m_hasChangedEverywhere = true;
    std::optional<RowAddress> m_changed; // rows from this one on have changed since the last frame
    QBasicTimer m_frame;
    QElapsedTimer m_sinceFrame;
    QBasicTimer m_spinner;
    int m_spinnerAngle = 0;
};
