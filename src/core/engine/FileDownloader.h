// Downloads one file. The bytes are written as they arrive, on a background thread: neither the memory used
// nor the main thread's pace depends on the size of the file or on the disk.
#pragma once

#include "platform/async/Stop.h"
#include "platform/async/Task.h"
#include "platform/http/HttpRequest.h"

#include <QByteArray>
#include <QString>

#include <functional>

class FileDownloader
{
public:
    // Bytes received so far, and bytes expected in all: negative when the server has not announced any.
    using Progress = std::function<void(qint64 received, qint64 expected)>;

    // The finished file ends up at `destination`, in a folder that exists.
    explicit FileDownloader(const QString &destination) : m_destination(destination) {}

    // Called on the main thread.
    Progress onProgress;

    // Returns the SHA-256 of the file when it is in place; what was there before is replaced. Otherwise
    // leaves nothing behind, and throws CancellationError when `stop` asked before the start, TransportError
    // (cancelled, when `stop` asks meanwhile), SimpleError for an answer with a status of 400 or more, or
    // SystemError of the disk. Once all bytes have arrived, `stop` has no effect.
    Task<QByteArray> download(const HttpRequest &request, const StopToken &stop = {}) const;

private:
    const QString m_destination;
};
