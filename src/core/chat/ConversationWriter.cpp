#include "core/chat/ConversationWriter.h"

#include "platform/error/Error.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {

bool writes(const QString &path, const QByteArray &content)
{
    // Somebody may have tidied it away meanwhile.
    makePrivateFolder(QFileInfo(path).path());
    try {
        AtomicFile::write(path, content);
        return true;
    } catch (const Error &) {
        return false;
    }
}

bool removes(const QString &path)
{
    return QFile::remove(path) || !QFile::exists(path);
}

bool succeeds(const QString &path, const std::optional<QByteArray> &content)
{
    return content ? writes(path, *content) : removes(path);
}

} // namespace

ConversationWriter::ConversationWriter(std::chrono::milliseconds retryPause)
    : m_progress(std::make_shared<Progress>()), m_queue(1)
{
    QTimer &retry = m_progress->retry;
    retry.setInterval(retryPause);
    QObject::connect(&retry, &QTimer::timeout, &retry, [this] { post([this] { retryFailed(); }); });
}

ConversationWriter::~ConversationWriter()
{
    m_progress->retry.disconnect();
    m_queue.post([this] { retryFailed(); });
}

void ConversationWriter::write(const QString &path, Content content)
{
    post([this, path, content = std::move(content)] {
        if (const std::optional<QByteArray> bytes = content())
            carryOut(path, bytes);
    });
}

void ConversationWriter::remove(const QString &path)
{
    post([this, path] { carryOut(path, std::nullopt); });
}

void ConversationWriter::carryOut(const QString &path, const std::optional<QByteArray> &content)
{
    m_failed.remove(path);
    if (succeeds(path, content))
        retryFailed();
    else
        m_failed.insert(path, content);
}

void ConversationWriter::retryFailed()
{
    m_failed.removeIf([](const auto &asked) { return succeeds(asked.key(), asked.value()); });
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
    m_queue.post([this, work = std::move(work), progress = m_progress] {
        work();
        postToMain([progress, hasFailed = !m_failed.isEmpty()] {
            if (!hasFailed)
                progress->retry.stop();
            else if (!progress->retry.isActive())
                progress->retry.start();
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
