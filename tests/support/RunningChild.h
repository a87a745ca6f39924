// A child process of a test, with what it has told so far. Killed, with its group, by the end of the test.
#pragma once

#include "core/engine/ChildProcess.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

class RunningChild
{
public:
    explicit RunningChild(const ChildProcess::Command &command);
    // Runs `script` with /bin/sh; `arguments` are its $1 and so on.
    explicit RunningChild(const QString &script, const QStringList &arguments = {});
    ~RunningChild();
    RunningChild(const RunningChild &) = delete;
    RunningChild &operator=(const RunningChild &) = delete;

    const std::shared_ptr<ChildProcess> &process() const { return m_process; }
    // Without a handle the child is not killed any more.
    void dropHandle() { m_process.reset(); }

    const QByteArray &output() const { return m_told->output; }
    // Its end was told, once, and nothing after it.
    bool ended() const { return m_told->ends == 1 && m_told->output == m_told->outputAtEnd; }
    int status() const { return m_told->status; }

private:
    struct Told
    {
        QByteArray output;
        QByteArray outputAtEnd;
        int status = -1;
        int ends = 0;
    };

    std::shared_ptr<Told> m_told = std::make_shared<Told>();
    std::shared_ptr<ChildProcess> m_process;
};

// No child of this program runs or waits to be reaped.
bool hasNoChildren();
