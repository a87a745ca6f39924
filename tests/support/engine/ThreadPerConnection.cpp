#include "ThreadPerConnection.h"

#include <thread>
#include <utility>

namespace demo {

ThreadPerConnection::Taken ThreadPerConnection::enqueue(std::function<void()> task)
{
    {
        const std::lock_guard lock(m_mutex);
        ++m_running;
    }
    std::thread([this, task = std::move(task)] {
        task();
        const std::lock_guard lock(m_mutex);
        --m_running;
        // Under the lock: the waiter may destroy this object as soon as it sees the last one gone.
        m_idle.notify_all();
    }).detach();
    return static_cast<Taken>(true);
}

void ThreadPerConnection::shutdown()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_running == 0; });
}

} // namespace demo
