// A process that need not be a child of this one, known by a mark, so that another one with its number is
// never hit.
#pragma once

#include "platform/process/ProcessHandle.h"
#include "platform/process/ProcessMark.h"

#include <optional>

class KnownProcess
{
public:
    // Nothing when the process has ended.
    static std::optional<KnownProcess> find(const ProcessMark &mark);

    bool isRunning() const;
    // Asks the process to end (SIGTERM).
    void terminate() const;
    // Kills the process, and its group if it leads one.
    void kill() const;

private:
    explicit KnownProcess(const ProcessMark &mark) : m_mark(mark), m_handle(mark.id) {}

    ProcessMark m_mark;
    ProcessHandle m_handle;
};
