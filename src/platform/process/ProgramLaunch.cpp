#include "platform/process/ProgramLaunch.h"

#include "platform/error/SystemError.h"
#include "platform/process/Descriptor.h"
#include "platform/process/ProgramImage.h"

#ifdef Q_OS_LINUX
#include "platform/process/linux/Keeper.h"
#endif

#include <cerrno>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

namespace {

[[noreturn]] void runChild(const ProgramImage &image, int output, int report, [[maybe_unused]] pid_t parent)
{
#ifdef Q_OS_LINUX
    keepProgram(image, output, report, parent);
#else
    image.execute(output);
    LaunchReport{0, errno}.writeTo(report);
    ::_exit(EXIT_FAILURE);
#endif
}

bool readReport(int descriptor, LaunchReport &report)
{
    ssize_t count = 0;
    do
        count = ::read(descriptor, &report, sizeof report);
    while (count < 0 && errno == EINTR);
    return count == sizeof report;
}

} // namespace

LaunchedProgram launchProgram(const ProgramImage &image, int output)
{
    Pipe reports = Pipe::make();
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child < 0)
        throw SystemError(errno);
    if (child == 0)
        runChild(image, output, reports.writing.number(), parent);
    ::setpgid(child, child); // the child does the same; whoever comes first
    reports.writing = Descriptor();
    LaunchedProgram launched{child, child};
    LaunchReport report;
    while (readReport(reports.reading.number(), report)) {
        if (report.error != 0) {
            exitStatusOf(child);
            throw SystemError(report.error);
        }
        launched.program = report.program;
    }
    return launched;
}

int exitStatusOf(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return EXIT_FAILURE;
    }
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

void LaunchReport::writeTo(int descriptor) const
{
    [[maybe_unused]] const auto written = ::write(descriptor, this, sizeof *this);
}
