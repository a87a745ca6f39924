// The engines that this program launched: the one in use, those that were told to end and still live, and the
// one that an earlier run left behind. An engine has the time to write down what it has of a download, and
// what does not listen is ended for good.
#pragma once

#include "core/engine/ChildProcess.h"
#include "core/engine/EngineNote.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QByteArray>
#include <QList>
#include <QObject>

#include <chrono>
#include <memory>
#include <optional>

class ChildProcessHolder;

// Main thread. Destroying it leaves the engines running.
class LaunchedEngines : public QObject
{
    Q_OBJECT

public:
    // `holder` keeps the one in use and is to outlive this.
    explicit LaunchedEngines(ChildProcessHolder &holder, QObject *parent = nullptr);

    // Starts an engine that serves on `port`, which is then the one in use. Throws a SystemError. There must
    // be none in use.
    void launch(const ChildProcess::Command &command, int port);
    bool isOneInUse() const { return m_current.has_value(); }
    // The one in use answers: what it is noted as holds from now on, also where a script became it.
    void noteCurrent();

    // Asks the one in use, if any, to end, and does not wait. One that has just lost the client of a pull is
    // asked a moment later: it needs some time to write down what it has fetched, and begins anew otherwise.
    void retire(bool lostPull);
    // Nothing more is heard of what those write that have been launched so far.
    void mute() { m_heard = 0; }

    // Whether there are any others than the one in use.
    bool areOldOnesLeft() const;
    // Whether one that was told to end may still answer on `port`.
    bool oldOnesHold(int port) const;
    // Returns once there are no others than the one in use, or when `stop` asks. Those that are left after
    // `limit` are killed with all that they started; what even then does not end is not waited for.
    Task<> oldOnesEnded(std::chrono::milliseconds limit, StopToken stop);

Q_SIGNALS:
    // The one launched last, on standard output or error.
    void wrote(const QByteArray &output);
    // The one in use has ended, and nobody asked it to.
    void endedByItself();

private:
    struct Engine
    {
        std::shared_ptr<ChildProcess> process;
        int port = 0;
        int number = 0;
    };

    void takeEnd(int number);
    Task<> childrenEnded(std::chrono::milliseconds limit, StopToken stop);

    ChildProcessHolder &m_holder;
    std::optional<Engine> m_current;
    QList<Engine> m_ending;
    EngineNote m_note;
    int m_launched = 0; // how many there have been, and the number of the last
    int m_heard = 0;
    StopSource m_noneEnding; // of the wait that is under way
};
