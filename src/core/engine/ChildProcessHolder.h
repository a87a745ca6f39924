// The slot that holds the running engine, so that it can be ended from any thread without the engine manager.
#pragma once

#include "core/engine/ChildProcess.h"

#include <memory>
#include <mutex>

// Every operation may be called from any thread.
class ChildProcessHolder
{
public:
    // The program's own; it is never destroyed.
    static ChildProcessHolder &shared();

    // Neither of these ends the process that was held.
    void set(std::shared_ptr<ChildProcess> process);
    void clear();

    // Empties the slot and asks the process that was in it, if any, to end. Does not wait.
    void terminate();

private:
    std::shared_ptr<ChildProcess> exchange(std::shared_ptr<ChildProcess> process);

    std::mutex m_mutex;
    std::shared_ptr<ChildProcess> m_process;
};
