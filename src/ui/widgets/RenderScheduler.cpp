#include "ui/widgets/RenderScheduler.h"

#include <QEvent>
#include <QWidget>

RenderScheduler::RenderScheduler(QWidget *view, std::function<void()> render)
    : QObject(view), m_view(view), m_render(std::move(render))
{
    view->installEventFilter(this);
}

void RenderScheduler::schedule()
{
    if (m_posted)
        return;
    m_posted = true;
    QMetaObject::invokeMethod(this, [this] { flush(); }, Qt::QueuedConnection);
}

void RenderScheduler::flush()
{
    m_posted = false;
    m_stale = !m_view->isVisible();
    if (!m_stale)
        m_render();
}

bool RenderScheduler::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && m_stale) {
        m_stale = false;
        m_render();
    }
    return QObject::eventFilter(watched, event);
}
