#include "support/ChildRoles.h"

#include "support/Lifeline.h"
#include "support/RunningChild.h"

#include <QFile>

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

std::optional<int> ChildRoles::play(QCoreApplication &application)
{
    const QString role = application.arguments().value(1);
    const QString pipe = application.arguments().value(2);
    if (role == QLatin1StringView(parent)) {
        const RunningChild child(Lifeline::script() + application.arguments().value(3), {pipe});
        return application.exec();
    }
    if (role != QLatin1StringView(leaveSomeone))
        return std::nullopt;
    const pid_t left = ::fork();
    if (left != 0) {
        ::setpgid(left, left);
        return std::printf("%d", left) > 0 ? 0 : 1;
    }
    const int lifeline = ::open(QFile::encodeName(pipe).constData(), O_WRONLY);
    const bool held = ::write(lifeline, "x", 1) == 1;
    ::sleep(held ? 60 : 0);
    ::_exit(0);
}
