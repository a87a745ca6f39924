#include "platform/process/linux/Keeper.h"

#include "platform/process/ProgramImage.h"
#include "platform/process/ProgramLaunch.h"
#include "platform/process/linux/ChildrenOf.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Milliseconds = long long;

// From the owner's death to the signal: an engine needs some time without a client to write down what it has
// of a download.
constexpr Milliseconds beforeAsking = 250;
// From the signal to the end by force.
constexpr Milliseconds grace = 3000;
// While what is left is being killed.
constexpr Milliseconds betweenRounds = 20;
// An owner that lives is not kept waiting by a process that cannot be killed, as one in a driver may be.
constexpr int mostRounds = 50;
constexpr Milliseconds never = -1;

Milliseconds now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000LL + time.tv_nsec / 1'000'000;
}

void closeAll()
{
    if (::close_range(0, ~0U, 0) == 0)
        return;
    // Before Linux 5.9.
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const auto end = static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 65'536));
    for (int number = 0; number < end; ++number)
        ::close(number);
}

class Keeper
{
public:
    Keeper(pid_t owner, pid_t program) : m_owner(owner), m_program(program)
    {
        if (::getppid() != owner)
            loseOwner();
    }

    // Returns once nothing is left, the status of the program.
    int run()
    {
        do {
            handle(nextSignal());
            escalate();
            reap();
            if (m_clearing && !m_childless)
                clear();
        } while (!m_childless && (m_ownerIsGone || m_rounds < mostRounds));
        return m_status;
    }

private:
    // 0 when the time is up.
    int nextSignal() const
    {
        sigset_t awaited;
        sigemptyset(&awaited);
        for (const int signal : {SIGCHLD, SIGTERM, keepersKillSignal})
            sigaddset(&awaited, signal);
        if (m_deadline == never)
            return std::max(::sigwaitinfo(&awaited, nullptr), 0);
        const Milliseconds left = std::max(m_deadline - now(), 0LL);
        const timespec limit{left / 1000, static_cast<long>(left % 1000) * 1'000'000};
        return std::max(::sigtimedwait(&awaited, nullptr, &limit), 0);
    }

    void handle(int signal)
    {
        if (signal == keepersKillSignal)
            killGroup();
        else if (signal == SIGTERM && ::getppid() == m_owner)
            ask();
        else if (signal == SIGTERM && !m_ownerIsGone)
            loseOwner();
    }

    void escalate()
    {
        if (m_clearing || m_deadline == never || now() < m_deadline)
            return;
        if (m_asked) {
            m_clearing = true;
            return;
        }
        ask();
        m_deadline = now() + grace;
    }

    // The owner's death comes as a SIGTERM too.
    void loseOwner()
    {
        m_ownerIsGone = true;
        m_deadline = now() + (m_asked ? grace : beforeAsking);
    }

    void ask()
    {
        m_asked = true;
        if (!m_ended)
            ::kill(m_program, SIGTERM);
    }

    void killGroup() const
    {
        if (!m_ended)
            ::kill(-m_program, SIGKILL);
    }

    // Leaves the program as a zombie until its group is ended, so that nobody else can get its number.
    void reap()
    {
        siginfo_t ended = {};
        while (::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
            if (ended.si_pid == m_program)
                killGroup();
            const int status = exitStatusOf(ended.si_pid);
            if (ended.si_pid == m_program) {
                m_ended = true;
                m_status = status;
                m_clearing = true;
            }
            ended.si_pid = 0;
        }
        m_childless = ::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
    }

    // Those below come up as children of this process when their parents are gone.
    void clear()
    {
        forEachChildOf(::getpid(), [](pid_t child) { ::kill(child, SIGKILL); });
        m_deadline = now() + betweenRounds;
        if (m_ended)
            ++m_rounds;
    }

    const pid_t m_owner;
    const pid_t m_program;
    bool m_ownerIsGone = false;
    bool m_asked = false;
    bool m_ended = false;
    bool m_clearing = false;
    bool m_childless = false;
    int m_status = EXIT_FAILURE;
    int m_rounds = 0;
    Milliseconds m_deadline = never;
};

// Becomes the program that the process `keeper` keeps.
[[noreturn]] void becomeProgram(const ProgramImage &image, int output, int report, pid_t keeper)
{
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    // A parent that died before the line above sends nothing.
    if (::getppid() == keeper)
        image.execute(output);
    LaunchReport{0, errno}.writeTo(report);
    ::_exit(EXIT_FAILURE);
}

} // namespace

void keepProgram(const ProgramImage &image, int output, int report, pid_t owner)
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_NAME, "program-keeper");
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    const pid_t keeper = ::getpid();
    const pid_t program = ::fork();
    if (program == 0)
        becomeProgram(image, output, report, keeper);
    LaunchReport{std::max(program, 0), program < 0 ? errno : 0}.writeTo(report);
    // Whoever reads what this process was started with sees its end in time, and its locks are not held here.
    closeAll();
    if (program < 0)
        ::_exit(EXIT_FAILURE);
    ::_exit(Keeper(owner, program).run());
}
