// Calls a view's render() when the state it shows has changed: once for all changes of one turn of the event
// loop, and not at all while the view is hidden, but as soon as it shows again.
#pragma once

#include <QObject>

#include <functional>

class QWidget;

class RenderScheduler : public QObject
{
    Q_OBJECT

public:
    // Belongs to `view`, and `render` is called only while it lives.
    RenderScheduler(QWidget *view, std::function<void()> render);

    // Renders after whichever of these signals.
    template <class Sender, class... Signals>
    void follow(Sender *sender, Signals... changed)
    {
        (connect(sender, changed, this, &RenderScheduler::schedule), ...);
    }

    void schedule();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void flush();

    QWidget *const m_view;
    const std::function<void()> m_render;
    bool m_posted = false;
    bool m_stale = false; // something changed while the view was hidden
};
