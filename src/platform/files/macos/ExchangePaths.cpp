#include "platform/files/ExchangePaths.h"

#include "platform/error/SystemError.h"

#include <QFile>

#include <cerrno>

#include <stdio.h>

bool exchangePaths(const QString &one, const QString &other)
{
    const QByteArray first = QFile::encodeName(one);
    const QByteArray second = QFile::encodeName(other);
    if (::renamex_np(first.constData(), second.constData(), RENAME_SWAP) == 0)
        return true;
    if (errno == ENOENT || errno == EINVAL || errno == ENOTSUP)
        return false;
    throw SystemError(errno);
}
