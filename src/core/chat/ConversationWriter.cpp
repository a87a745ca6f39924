#include "core/chat/ConversationWriter.h"

#include "platform/error/Error.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <utility>

ConversationWriter::ConversationWriter() : m_progress(std::make_shared<Progress>()), m_queue(1) {}

ConversationWriter::~ConversationWriter() = default;

void ConversationWriter::write(const QString &path, const QByteArray &content)
{
    post([path, content] {
        // Somebody may have tidied it away meanwhile.
        makePrivateFolder(QFileInfo(path).path());
        try {
            AtomicFile::write(path, content);
        } catch (const Error &) {
            // The conversation stays in memory, and its next save tries again.
        }
    });
}

void ConversationWriter::remove(const QString &path)
{
    post([path] { QFile::remove(path); });
}

int ConversationWriter::pending() const
{
    return m_progress->pending;
}

Task<bool> ConversationWriter::finished(std::chrono::milliseconds limit) const
{
    return waitUntilFinished(m_progress, limit);
}

void ConversationWriter::post(std::function<void()> work)
{
    ++m_progress->pending;
    m_queue.post([work = std::move(work), progress = m_progress] {
        work();
        postToMain([progress] {
            if (--progress->pending > 0)
                return;
            for (const Completion<bool> &waiter : std::exchange(progress->waiters, {}))
                waiter.complete(true);
        });
    });
}

Task<bool> ConversationWriter::waitUntilFinished(std::shared_ptr<Progress> progress,
                                                 std::chrono::milliseconds limit)
{
    if (progress->pending == 0)
        co_return true;
    const Completion<bool> done;
    progress->waiters.push_back(done);
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [done] { done.complete(false); });
    timer.start(limit);
    co_return co_await done.wait();
}
