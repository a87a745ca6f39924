// Writes and removes conversation files on a background thread of its own, in the order asked for, so that
// the last snapshot of a conversation stays and a removed one never comes back. Failures are passed over.
#pragma once

#include "platform/async/Completion.h"
#include "platform/async/Task.h"
#include "platform/async/WorkerQueue.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <memory>
#include <vector>

class ConversationWriter
{
public:
    ConversationWriter();
    // Waits for everything asked for.
    ~ConversationWriter();

    // Makes the file's folder where it is missing.
    void write(const QString &path, const QByteArray &content);
    void remove(const QString &path);

    // How many of the files asked for are not done yet.
    int pending() const;
    // Returns true as soon as none is pending, false after `limit`.
    Task<bool> finished(std::chrono::milliseconds limit) const;

private:
    struct Progress
    {
        int pending = 0;
        std::vector<Completion<bool>> waiters;
    };

    void post(std::function<void()> work);
    static Task<bool> waitUntilFinished(std::shared_ptr<Progress> progress, std::chrono::milliseconds limit);

    const std::shared_ptr<Progress> m_progress;
    WorkerQueue m_queue;
};
