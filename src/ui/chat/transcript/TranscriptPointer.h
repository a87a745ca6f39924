// What the mouse does to the transcript: pressing buttons, clicking links, selecting, scrolling code
// sideways.
#pragma once

#include "ui/chat/transcript/TranscriptHit.h"
#include "ui/chat/transcript/TranscriptState.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

class QMouseEvent;
class QWidget;

class TranscriptPointer : public QObject
{
    Q_OBJECT

public:
    // `state` and `viewport` must outlive the pointer.
    TranscriptPointer(TranscriptState &state, QWidget *viewport);

    void press(const QMouseEvent &event);
    void doubleClick(const QMouseEvent &event);
    void moveTo(const QMouseEvent &event);
    void release(const QMouseEvent &event);
    void leave();
    // Ends a drag whose release will not come.
    void giveUp();

    // Whether a button is held down.
    bool isHeld() const { return m_held != Qt::NoButton; }

Q_SIGNALS:
    void triggered(const TranscriptButton &button);
    void linkClicked(const QString &target);
    // Something else than the cursor looks different.
    void changed();
    // The selection has reached beyond the viewport, by so many pixels.
    void scrollWanted(int distance);
    void released();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    struct HandleDrag
    {
        int message;
        int block;
        int startX;
        int startScroll;
    };

    void select(const TranscriptHit &hit, bool extend);
    void extendTo(QPoint point);
    // How far the mouse is beyond the viewport's upper or lower edge, and beyond the sides of the code block
    // in which the selection ends.
    QPoint beyond() const;
    void dragHandle(int x);
    void hover(const TranscriptHit &hit);
    void stopDragging();

    TranscriptState &m_state;
    QWidget *const m_viewport;
    Qt::MouseButton m_held = Qt::NoButton;
    bool m_isSelecting = false;
    TextRange m_grain; // what a drag selects at least: nothing, or the word or line it began with
    std::optional<HandleDrag> m_handle;
    QString m_pressedLink;
    QPoint m_lastPoint;
    QBasicTimer m_scrolling; // while the selection reaches beyond what is in sight
    QElapsedTimer m_sinceDoubleClick;
    QPoint m_doubleClickPoint;
};
