#include "platform/machine/Machine.h"

#include "platform/machine/linux/MemoryBlocks.h"

#include <QFile>

#include <cerrno>
#include <limits>

#include <sys/statvfs.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

quint64 physicalMemory()
{
    if (const auto blocks = onlineMemory(u"/sys/devices/system/memory"_s))
        return *blocks;
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? static_cast<quint64>(pages) * static_cast<quint64>(pageSize) : 0;
}

std::optional<qint64> availableCapacity(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct statvfs volume = {};
    int result = 0;
    do {
        result = statvfs(name.constData(), &volume);
    } while (result != 0 && errno == EINTR);
    if (result != 0)
        return std::nullopt;
    // What only the superuser may still write is not counted.
    qint64 bytes = 0;
    if (qMulOverflow(static_cast<qint64>(volume.f_bavail), static_cast<qint64>(volume.f_frsize), &bytes))
        return std::numeric_limits<qint64>::max();
    return bytes;
}
