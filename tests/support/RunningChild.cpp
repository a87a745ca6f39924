#include "support/RunningChild.h"

#include <sys/wait.h>

using namespace Qt::StringLiterals;

RunningChild::RunningChild(const ChildProcess::Command &command)
{
    const auto onOutput = [told = m_told](const QByteArray &bytes) { told->output += bytes; };
    const auto onEnd = [told = m_told](int status) {
        ++told->ends;
        told->status = status;
        told->outputAtEnd = told->output;
    };
    m_process = ChildProcess::start(command, onOutput, onEnd);
}

RunningChild::RunningChild(const QString &script, const QStringList &arguments)
    : RunningChild(ChildProcess::Command{u"/bin/sh"_s, QStringList{u"-c"_s, script, u"sh"_s} + arguments,
                                         std::nullopt})
{
}

RunningChild::~RunningChild()
{
    if (m_process)
        m_process->kill();
}

bool hasNoChildren()
{
    siginfo_t info = {};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == -1;
}
