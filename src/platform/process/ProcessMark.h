// What tells one process from every other that this machine has had or will have, although its number is used
// again. It can be written down, and compared after this program has ended.
#pragma once

#include <QByteArray>

#include <optional>

#include <sys/types.h>

struct ProcessMark
{
    pid_t id = 0;
    QByteArray birth;   // when it was started, in the system's terms; never empty in a mark of a process
    QByteArray program; // the path of the program it runs; empty where the system does not tell

    // Nothing when there is no such process, or when it has ended and nobody has asked for its status yet.
    static std::optional<ProcessMark> of(pid_t id);
    // Whether both are of one process, which may have become another program only where one of the two is not
    // known.
    bool matches(const ProcessMark &other) const;
};
