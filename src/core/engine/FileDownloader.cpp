#include "core/engine/FileDownloader.h"

#include "platform/async/WorkerQueue.h"
#include "platform/error/CancellationError.h"
#include "platform/error/SimpleError.h"
#include "platform/error/SystemError.h"
#include "platform/http/HttpClient.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

// Large enough that the disk and the network seldom wait for each other.
constexpr qint64 waitingBytes = 1024 * 1024;

// The file under a name of its own while it grows. Background threads only, one at a time.
class PartialFile
{
public:
    explicit PartialFile(const QString &destination)
        : m_destination(QFile::encodeName(destination)), m_name(m_destination + ".part")
    {
    }
    ~PartialFile() { close(); }
    PartialFile(const PartialFile &) = delete;
    PartialFile &operator=(const PartialFile &) = delete;

    void open()
    {
        constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
        m_descriptor = ::open(m_name.constData(), flags, 0600);
        if (m_descriptor < 0)
            throw SystemError(errno);
    }

    void write(const QByteArray &bytes)
    {
        m_sum.addData(bytes);
        for (qsizetype done = 0; done < bytes.size();) {
            const ssize_t count =
                ::write(m_descriptor, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
            if (count >= 0)
                done += count;
            else if (errno != EINTR)
                throw SystemError(errno);
        }
    }

    // The SHA-256 of what was written.
    QByteArray finish()
    {
        // Some file systems only now say that the bytes did not fit.
        if (close() != 0 && errno != EINTR)
            throw SystemError(errno);
        if (std::rename(m_name.constData(), m_destination.constData()) != 0)
            throw SystemError(errno);
        return m_sum.result();
    }

    void discard()
    {
        close();
        ::unlink(m_name.constData());
    }

private:
    int close() { return m_descriptor < 0 ? 0 : ::close(std::exchange(m_descriptor, -1)); }

    const QByteArray m_destination;
    const QByteArray m_name;
    int m_descriptor = -1;
    QCryptographicHash m_sum{QCryptographicHash::Sha256};
};

Task<QByteArray> receive(std::shared_ptr<PartialFile> file, FileDownloader::Progress onProgress,
                         HttpRequest request, StopToken stop)
{
    const HttpTransfer transfer = HttpClient::shared().start(request, stop);
    const HttpHead head = co_await transfer.head();
    if (head.status >= 400)
        throw SimpleError(
            QCoreApplication::translate("FileDownloader", "The download server answered with error %1.")
                .arg(head.status));
    const auto open = [file] { file->open(); };
    co_await WorkerQueue::shared().run(open);
    qint64 received = 0;
    for (;;) {
        const QByteArray bytes = co_await transfer.read();
        if (bytes.isEmpty())
            break;
        received += bytes.size();
        if (onProgress)
            onProgress(received, head.contentLength);
        const auto write = [file, bytes] { file->write(bytes); };
        co_await WorkerQueue::shared().run(write);
    }
    const auto finish = [file] { return file->finish(); };
    co_return co_await WorkerQueue::shared().run(finish);
}

Task<QByteArray> downloadTo(QString destination, FileDownloader::Progress onProgress, HttpRequest request,
                            StopToken stop)
{
    if (stop.stopRequested())
        throw CancellationError();
    request.readBufferSize = waitingBytes;
    const auto file = std::make_shared<PartialFile>(destination);
    std::exception_ptr failure;
    try {
        co_return co_await receive(file, onProgress, request, stop);
    } catch (...) {
        failure = std::current_exception();
    }
    const auto discard = [file] { file->discard(); };
    co_await WorkerQueue::shared().run(discard);
    std::rethrow_exception(failure);
}

} // namespace

Task<QByteArray> FileDownloader::download(const HttpRequest &request, const StopToken &stop) const
{
    return downloadTo(m_destination, onProgress, request, stop);
}
