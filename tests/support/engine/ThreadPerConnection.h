#pragma once

// Serves every connection in a thread of its own, so that no number of open streams makes another wait.

#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

#include <httplib.h>

namespace demo {

class ThreadPerConnection : public httplib::TaskQueue
{
public:
    // Nothing in older releases of the library, whether the task was taken in newer ones.
    using Taken = decltype(std::declval<httplib::TaskQueue &>().enqueue(std::function<void()>()));

    Taken enqueue(std::function<void()> task) override;
    void shutdown() override;

private:
    std::mutex m_mutex;
    std::condition_variable m_idle;
    int m_running = 0;
};

} // namespace demo
