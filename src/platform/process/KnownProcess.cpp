#include "platform/process/KnownProcess.h"

#include <csignal>

#include <unistd.h>

std::optional<KnownProcess> KnownProcess::find(const ProcessMark &mark)
{
    // The handle first: that it is the right one's is then seen while it holds the number.
    KnownProcess process(mark);
    if (!process.isRunning())
        return std::nullopt;
    return process;
}

bool KnownProcess::isRunning() const
{
    const std::optional<ProcessMark> now = ProcessMark::of(m_mark.id);
    return now && now->matches(m_mark);
}

void KnownProcess::terminate() const
{
    if (isRunning())
        m_handle.send(SIGTERM);
}

void KnownProcess::kill() const
{
    if (!isRunning())
        return;
    if (::getpgid(m_mark.id) == m_mark.id)
        ::kill(-m_mark.id, SIGKILL);
    m_handle.send(SIGKILL);
}
