#include "platform/process/ProcessMark.h"

#include <libproc.h>
#include <sys/proc.h>
#include <sys/sysctl.h>

std::optional<ProcessMark> ProcessMark::of(pid_t id)
{
    int name[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, id};
    kinfo_proc facts = {};
    size_t size = sizeof facts;
    if (::sysctl(name, 4, &facts, &size, nullptr, 0) != 0 || size == 0 || facts.kp_proc.p_stat == SZOMB)
        return std::nullopt;
    const timeval start = facts.kp_proc.p_starttime;
    char program[PROC_PIDPATHINFO_MAXSIZE] = {};
    const int length = ::proc_pidpath(id, program, sizeof program);
    return ProcessMark{id, QByteArray::number(qint64(start.tv_sec)) + '.' + QByteArray::number(start.tv_usec),
                       QByteArray(program, length > 0 ? length : 0)};
}
