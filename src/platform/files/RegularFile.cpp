#include "platform/files/RegularFile.h"

#include <QFile>
#include <QScopeGuard>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isRegular(const struct stat &status)
{
    return S_ISREG(status.st_mode);
}

// Fewer bytes than `size` only where the file ends; -1 when it cannot be read.
qint64 readUpTo(int descriptor, char *buffer, qint64 size)
{
    qint64 done = 0;
    while (done < size) {
        const ssize_t count = ::read(descriptor, buffer + done, static_cast<size_t>(size - done));
        if (count == 0)
            break;
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return -1;
        done += count;
    }
    return done;
}

} // namespace

std::optional<QByteArray> readRegularFile(const QString &path, qint64 limit)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    // Opening a device may do something to it already.
    if (::stat(name.constData(), &status) < 0 || !isRegular(status))
        return std::nullopt;
    const int descriptor = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return std::nullopt;
    const auto close = qScopeGuard([descriptor] { ::close(descriptor); });
    // What is there by now may be something else.
    if (::fstat(descriptor, &status) < 0 || !isRegular(status) || status.st_size > limit)
        return std::nullopt;
    // Of one that grows meanwhile, a byte too many comes.
    QByteArray content(static_cast<qsizetype>(status.st_size) + 1, Qt::Uninitialized);
    const qint64 count = readUpTo(descriptor, content.data(), content.size());
    if (count < 0 || count > status.st_size)
        return std::nullopt;
    content.truncate(static_cast<qsizetype>(count));
    return content;
}
