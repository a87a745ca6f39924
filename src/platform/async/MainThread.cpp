#include "platform/async/MainThread.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <deque>
#include <mutex>

namespace {

const QEvent::Type wakeUp = static_cast<QEvent::Type>(QEvent::registerEventType());

// Our own queue on our own mutex: the order between threads is then visible to ThreadSanitizer, which Qt's
// posted events are not, since Qt is not built with it.
class Mailbox final : public QObject
{
public:
    Mailbox() { moveToThread(QCoreApplication::instance()->thread()); }

    void post(std::function<void()> function)
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(std::move(function));
        QCoreApplication::postEvent(this, new QEvent(wakeUp));
    }

protected:
    // One function an event, so that one which opens a menu or a dialog does not hold up those behind it.
    bool event(QEvent *event) override
    {
        std::function<void()> function;
        {
            // The event itself was written under this lock too, so nothing of it is read before.
            const std::lock_guard lock(m_mutex);
            if (event->type() == wakeUp) {
                function = std::move(m_waiting.front());
                m_waiting.pop_front();
            }
        }
        if (!function)
            return QObject::event(event);
        function();
        return true;
    }

private:
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_waiting;
};

} // namespace

void postToMain(std::function<void()> function)
{
    if (!QCoreApplication::instance())
        return;
    // Never destroyed: threads may post until the very end of the process.
    static auto *const mailbox = new Mailbox;
    mailbox->post(std::move(function));
}
