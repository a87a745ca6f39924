// A program running as a child of this one, in a process group of its own, with its output read as it comes.
#pragma once

#include "core/engine/Environment.h"
#include "platform/process/ProcessHandle.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

struct LaunchedProgram;

class ChildProcess
{
public:
    struct Command
    {
        QString program;                        // the path of an executable file
        QStringList arguments;                  // without the program's name
        std::optional<Environment> environment; // the whole of it; nothing: that of this process
    };

    // What the child wrote on its standard output and error, which share one pipe; never empty.
    using OutputHandler = std::function<void(const QByteArray &)>;
    // The exit status, or the number of the signal that ended the child.
    using EndHandler = std::function<void(int)>;

    // Starts `command`, or throws a SystemError that says why the system refused. Standard input stays that
    // of this process. The handlers are called on the main thread, never inside start(), whether or not a
    // handle is left: `onOutput` as output arrives, then `onEnd` once, after everything the child wrote. By
    // then what it left running has been killed: its process group and, on Linux, whatever else it started.
    // On Linux the child is sent SIGTERM soon after this process has died, and nothing it started outlives
    // that by more than seconds. The kernel ties that to the thread that started the child, so this belongs
    // to the main thread.
    static std::shared_ptr<ChildProcess> start(const Command &command, OutputHandler onOutput,
                                               EndHandler onEnd);

    // Dropping the last handle neither ends the child nor waits for it, and leaves no zombie behind.
    ~ChildProcess() = default;
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    // The process id of the program, also when it has ended.
    pid_t programId() const { return m_program; }
    // Whether the child has not been seen to end yet. Any thread.
    bool isRunning() const;
    // Asks the child itself, and nothing it started, to end (SIGTERM). Does not wait; does nothing when the
    // child has ended. Any thread.
    void terminate() const;
    // Kills the child and its whole process group (SIGKILL). Does not wait. Any thread.
    void kill() const;

private:
    class Output;

    explicit ChildProcess(const LaunchedProgram &launched);
    static void watch(const std::shared_ptr<ChildProcess> &child, Output *output);
    void waitForEnd() const;
    int reap();
    void killAll() const;

    const ProcessHandle m_child;
    const pid_t m_program; // also the number of its process group
    mutable std::mutex m_mutex;
    bool m_reaped = false; // once set, the numbers may belong to somebody else
};
