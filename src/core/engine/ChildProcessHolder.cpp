#include "core/engine/ChildProcessHolder.h"

#include <utility>

ChildProcessHolder &ChildProcessHolder::shared()
{
    static auto *const instance = new ChildProcessHolder;
    return *instance;
}

void ChildProcessHolder::set(std::shared_ptr<ChildProcess> process)
{
    exchange(std::move(process));
}

void ChildProcessHolder::clear()
{
    exchange({});
}

void ChildProcessHolder::terminate()
{
    // The signal goes out after the lock is released.
    if (const auto process = exchange({}))
        process->terminate();
}

std::shared_ptr<ChildProcess> ChildProcessHolder::exchange(std::shared_ptr<ChildProcess> process)
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_process, std::move(process));
}
