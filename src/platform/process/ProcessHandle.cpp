#include "platform/process/ProcessHandle.h"

#include <QtGlobal>

#include <csignal>

#ifdef Q_OS_LINUX
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace {

Descriptor descriptorOf([[maybe_unused]] pid_t id)
{
#ifdef Q_OS_LINUX
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
#else
    return Descriptor();
#endif
}

} // namespace

ProcessHandle::ProcessHandle(pid_t id) : m_id(id), m_descriptor(descriptorOf(id)) {}

void ProcessHandle::send(int signal) const
{
#ifdef Q_OS_LINUX
    if (m_descriptor.number() >= 0) {
        ::syscall(SYS_pidfd_send_signal, m_descriptor.number(), signal, nullptr, 0);
        return;
    }
#endif
    ::kill(m_id, signal);
}
