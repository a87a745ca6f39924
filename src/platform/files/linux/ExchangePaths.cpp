#include "platform/files/ExchangePaths.h"

#include "platform/error/SystemError.h"

#include <QFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>

bool exchangePaths(const QString &one, const QString &other)
{
    const QByteArray first = QFile::encodeName(one);
    const QByteArray second = QFile::encodeName(other);
    if (::renameat2(AT_FDCWD, first.constData(), AT_FDCWD, second.constData(), RENAME_EXCHANGE) == 0)
        return true;
    if (errno == ENOENT || errno == EINVAL || errno == ENOSYS)
        return false;
    throw SystemError(errno);
}
