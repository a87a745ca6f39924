// A process that signals are sent to. On Linux it rests on a pidfd, so that a number which is used again is
// never hit.
#pragma once

#include "platform/process/Descriptor.h"

#include <sys/types.h>

class ProcessHandle
{
public:
    // `id` is to be known not to have been used again yet. Where the system has no pidfd, that is to hold at
    // each call below as well.
    explicit ProcessHandle(pid_t id);

    pid_t id() const { return m_id; }
    // Does nothing when the process has ended. Any thread.
    void send(int signal) const;

private:
    pid_t m_id;
    Descriptor m_descriptor; // the pidfd, where there is one
};
