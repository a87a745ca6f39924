#include "platform/async/WorkerQueue.h"

#include <algorithm>

WorkerQueue::WorkerQueue(int threads) : m_limit(std::max(threads, 1)) {}

WorkerQueue::~WorkerQueue()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    for (std::thread &thread : m_threads)
        thread.join();
}

WorkerQueue &WorkerQueue::shared()
{
    static WorkerQueue instance(std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 2, 4));
    return instance;
}

void WorkerQueue::post(std::function<void()> function)
{
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back(std::move(function));
        if (static_cast<int>(m_waiting.size()) > m_idle && static_cast<int>(m_threads.size()) < m_limit)
            m_threads.emplace_back([this] { work(); });
    }
    m_changed.notify_one();
}

void WorkerQueue::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        ++m_idle;
        m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        --m_idle;
        if (m_waiting.empty())
            return;
        const auto function = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        function();
        lock.lock();
    }
}
