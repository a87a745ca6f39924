// Writes and removes conversation files on a background thread of its own, in the order asked for, so that
// the last snapshot of a conversation stays and a removed one never comes back. What fails is said to nobody:
// it is tried again after the next success, from time to time, and in the end.
#pragma once

#include "platform/async/Completion.h"
#include "platform/async/Task.h"
#include "platform/async/WorkerQueue.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ConversationWriter
{
public:
    // `retryPause` is how long what failed waits, unless something else succeeds before.
    explicit ConversationWriter(std::chrono::milliseconds retryPause = std::chrono::seconds(30));
    // Waits for everything asked for; what failed is tried a last time.
    ~ConversationWriter();

    // What a file is to hold, or nothing when it is to stay as it is. Called once, on the background thread.
    using Content = std::function<std::optional<QByteArray>()>;

    // Makes the file's folder where it is missing.
    void write(const QString &path, Content content);
    void remove(const QString &path);

    // How many of the files asked for have not been tried yet.
    int pending() const;
    // Returns true as soon as none is pending, false after `limit`.
    Task<bool> finished(std::chrono::milliseconds limit) const;

private:
    struct Progress
    {
        int pending = 0;
        std::vector<Completion<bool>> waiters;
        QTimer retry; // runs while something has failed
    };

    void post(std::function<void()> work);
    // On the background thread, as all that touches m_failed. No content stands for a removal.
    void carryOut(const QString &path, const std::optional<QByteArray> &content);
    void retryFailed();
    static Task<bool> waitUntilFinished(std::shared_ptr<Progress> progress, std::chrono::milliseconds limit);

    const std::shared_ptr<Progress> m_progress;
    QHash<QString, std::optional<QByteArray>> m_failed; // the last that was asked for of each path
    WorkerQueue m_queue;                                // ends before what its thread uses
};
