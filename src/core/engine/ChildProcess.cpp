#include "core/engine/ChildProcess.h"

#include "platform/async/MainThread.h"
#include "platform/error/SystemError.h"
#include "platform/process/Descriptor.h"
#include "platform/process/ProgramImage.h"
#include "platform/process/ProgramLaunch.h"
#include "platform/process/SignalsBlocked.h"

#ifdef Q_OS_LINUX
#include "platform/process/linux/Keeper.h"
#endif

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

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
    const ProgramImage image(command.program, command.arguments, command.environment);
    Pipe pipe = Pipe::make();
    const SignalsBlocked blocked; // the watching thread inherits it
    const LaunchedProgram launched = launchProgram(image, pipe.writing.number());
    const std::shared_ptr<ChildProcess> child(new ChildProcess(launched));
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

ChildProcess::ChildProcess(const LaunchedProgram &launched)
    : m_child(launched.child), m_program(launched.program)
{
}

bool ChildProcess::isRunning() const
{
    const std::lock_guard lock(m_mutex);
    return !m_reaped;
}

void ChildProcess::terminate() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_reaped)
        m_child.send(SIGTERM);
}

void ChildProcess::kill() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_reaped)
        killAll();
}

void ChildProcess::killAll() const
{
#ifdef Q_OS_LINUX
    m_child.send(keepersKillSignal);
#else
    ::kill(-m_program, SIGKILL);
#endif
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
    while (::waitid(P_PID, static_cast<id_t>(m_child.id()), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
    }
}

int ChildProcess::reap()
{
    const std::lock_guard lock(m_mutex);
    killAll();
    m_reaped = true;
    return exitStatusOf(m_child.id());
}
