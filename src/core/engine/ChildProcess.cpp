#include "core/engine/ChildProcess.h"

#include "platform/async/MainThread.h"
#include "platform/error/SystemError.h"

#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

extern char **environ; // macOS declares it nowhere

namespace {

class Descriptor
{
public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }

    int number() const { return m_number; }

private:
    int m_number;
};

struct Pipe
{
    Descriptor reading;
    Descriptor writing;
};

// A copy above the three standard descriptors, which the child's own would otherwise overwrite where this
// process was started with one of them closed.
Descriptor aboveStandard(const Descriptor &original)
{
    const int copy = ::fcntl(original.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (copy < 0)
        throw SystemError(errno);
    return Descriptor(copy);
}

Pipe makePipe()
{
    int ends[2];
#ifdef Q_OS_LINUX
    const int made = ::pipe2(ends, O_CLOEXEC);
#else
    const int made = ::pipe(ends);
#endif
    if (made != 0)
        throw SystemError(errno);
    const Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    return {aboveStandard(reading), aboveStandard(writing)};
}

// What exec takes, made before the fork: nothing may be allocated after it.
class Image
{
public:
    explicit Image(const ChildProcess::Command &command)
    {
        m_arguments.push_back(QFile::encodeName(command.program));
        for (const QString &argument : command.arguments)
            m_arguments.push_back(QFile::encodeName(argument));
        m_argumentPointers = pointers(m_arguments);
        if (!command.environment)
            return;
        for (auto entry = command.environment->begin(); entry != command.environment->end(); ++entry)
            m_environment.push_back(entry.key() + '=' + entry.value());
        m_environmentPointers = pointers(m_environment);
    }
    Image(const Image &) = delete;
    Image &operator=(const Image &) = delete;

    char *const *arguments() const { return m_argumentPointers.data(); }
    char *const *environment() const
    {
        return m_environmentPointers.empty() ? environ : m_environmentPointers.data();
    }

private:
    static std::vector<char *> pointers(std::vector<QByteArray> &texts)
    {
        std::vector<char *> result;
        for (QByteArray &text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    }

    std::vector<QByteArray> m_arguments;
    std::vector<QByteArray> m_environment;
    std::vector<char *> m_argumentPointers;
    std::vector<char *> m_environmentPointers; // empty: that of this process
};

// Blocked across the fork, so that no handler of ours runs in the child, and while the watching thread is
// made, which inherits the mask.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

private:
    sigset_t m_before;
};

void resetSignals()
{
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// Runs in the child, where only async-signal-safe calls are allowed. Returns when a call has failed, with its
// reason in errno.
void becomeProgram(const Image &image, int output, [[maybe_unused]] pid_t parent)
{
    if (::setpgid(0, 0) != 0)
        return;
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    // A parent that died before the line above sends nothing.
    if (::getppid() != parent)
        ::_exit(EXIT_FAILURE);
#endif
    resetSignals();
    if (::dup2(output, STDOUT_FILENO) < 0 || ::dup2(output, STDERR_FILENO) < 0)
        return;
#ifdef Q_OS_LINUX
    // Ours are closed by exec anyway; these are what libraries and whoever started us left open.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
#endif
    ::execve(image.arguments()[0], image.arguments(), image.environment());
}

int waitForStatus(pid_t pid)
{
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            return EXIT_FAILURE;
    }
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

// Returns once the program runs; throws when it could not be made to.
pid_t launchProgram(const Image &image, const Descriptor &output)
{
    Pipe failure = makePipe();
    const pid_t parent = ::getpid();
    const pid_t pid = ::fork();
    if (pid < 0)
        throw SystemError(errno);
    if (pid == 0) {
        becomeProgram(image, output.number(), parent);
        const int reason = errno;
        [[maybe_unused]] const auto written = ::write(failure.writing.number(), &reason, sizeof reason);
        ::_exit(EXIT_FAILURE);
    }
    ::setpgid(pid, pid); // the child does the same; whoever comes first
    failure.writing = Descriptor();
    int reason = 0;
    ssize_t count = 0;
    do
        count = ::read(failure.reading.number(), &reason, sizeof reason);
    while (count < 0 && errno == EINTR);
    if (count != sizeof reason)
        return pid;
    waitForStatus(pid);
    throw SystemError(reason);
}

// A parent that ignored SIGCHLD passes that on to the programs it starts, and with it the loss of every exit
// status.
void keepExitStatuses()
{
    struct sigaction current = {};
    sigaction(SIGCHLD, nullptr, &current);
    if (current.sa_handler != SIG_IGN && (current.sa_flags & SA_NOCLDWAIT) == 0)
        return;
    current.sa_flags &= ~SA_NOCLDWAIT;
    if (current.sa_handler == SIG_IGN)
        current.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &current, nullptr);
}

} // namespace

// The reading end of a child's output. Main thread. Belongs to the application object, since a child may
// outlive it and nobody is then left to hear of its end.
class ChildProcess::Output : public QObject
{
public:
    Output(Descriptor pipe, OutputHandler onOutput, EndHandler onEnd)
        : QObject(QCoreApplication::instance()),
          m_pipe(std::move(pipe)),
          m_onOutput(std::move(onOutput)),
          m_onEnd(std::move(onEnd)),
          m_notifier(m_pipe.number(), QSocketNotifier::Read)
    {
        ::fcntl(m_pipe.number(), F_SETFL, O_NONBLOCK);
        connect(&m_notifier, &QSocketNotifier::activated, this, [this] { readOnce(); });
    }

    // Delivers what the child has left in the pipe, then its end. A process that left the child's group may
    // hold the pipe open and go on writing, so no end of file is waited for.
    void finish(int status)
    {
        int waiting = 0;
        ::ioctl(m_pipe.number(), FIONREAD, &waiting);
        while (waiting > 0) {
            const int count = readOnce();
            if (count <= 0)
                break;
            waiting -= count;
        }
        m_notifier.setEnabled(false);
        m_onEnd(status);
    }

private:
    int readOnce()
    {
        constexpr int wholePipe = 64 * 1024;
        QByteArray chunk(wholePipe, Qt::Uninitialized);
        ssize_t count = 0;
        do
            count = ::read(m_pipe.number(), chunk.data(), wholePipe);
        while (count < 0 && errno == EINTR);
        if (count == 0 || (count < 0 && errno != EAGAIN))
            m_notifier.setEnabled(false);
        if (count <= 0)
            return 0;
        chunk.truncate(count);
        m_onOutput(chunk);
        return static_cast<int>(count);
    }

    const Descriptor m_pipe;
    const OutputHandler m_onOutput;
    const EndHandler m_onEnd;
    QSocketNotifier m_notifier;
};

std::shared_ptr<ChildProcess> ChildProcess::start(const Command &command, OutputHandler onOutput,
                                                  EndHandler onEnd)
{
    Q_ASSERT(QThread::currentThread() == QCoreApplication::instance()->thread());
    keepExitStatuses();
    const Image image(command);
    Pipe pipe = makePipe();
    const SignalsBlocked blocked;
    const std::shared_ptr<ChildProcess> child(new ChildProcess(launchProgram(image, pipe.writing)));
    auto *const output = new Output(std::move(pipe.reading), std::move(onOutput), std::move(onEnd));
    try {
        std::thread([child, output] { watch(child, output); }).detach();
    } catch (const std::system_error &error) {
        delete output;
        child->kill();
        child->reap();
        throw SystemError(error.code().value());
    }
    return child;
}

ChildProcess::ChildProcess(pid_t pid) : m_pid(pid)
{
#ifdef Q_OS_LINUX
    m_descriptor = static_cast<int>(::syscall(SYS_pidfd_open, pid, 0));
#endif
}

ChildProcess::~ChildProcess()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool ChildProcess::isRunning() const
{
    const std::lock_guard lock(m_mutex);
    return !m_reaped;
}

void ChildProcess::terminate() const
{
    const std::lock_guard lock(m_mutex);
    if (m_reaped)
        return;
#ifdef Q_OS_LINUX
    if (m_descriptor >= 0) {
        ::syscall(SYS_pidfd_send_signal, m_descriptor, SIGTERM, nullptr, 0);
        return;
    }
#endif
    ::kill(m_pid, SIGTERM);
}

void ChildProcess::kill() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_reaped)
        ::kill(-m_pid, SIGKILL);
}

void ChildProcess::watch(const std::shared_ptr<ChildProcess> &child, Output *output)
{
    child->waitForEnd();
    const int status = child->reap();
    postToMain([output, status] {
        output->finish(status);
        delete output;
    });
}

// Leaves the ended child as a zombie: until it is reaped, nobody else can get its number, nor that of its
// group.
void ChildProcess::waitForEnd() const
{
    siginfo_t info = {};
    while (::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
}

int ChildProcess::reap()
{
    const std::lock_guard lock(m_mutex);
    ::kill(-m_pid, SIGKILL);
    m_reaped = true;
    return waitForStatus(m_pid);
}
