#include "platform/machine/linux/MemoryBlocks.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

} // namespace

std::optional<quint64> onlineMemory(const QString &folder)
{
    bool valid = false;
    const quint64 blockSize = contents(folder + "/block_size_bytes"_L1).toULongLong(&valid, 16);
    if (!valid || blockSize == 0)
        return std::nullopt;
    quint64 blocks = 0;
    const QStringList entries = QDir(folder).entryList({u"memory*"_s}, QDir::Dirs);
    for (const QString &entry : entries)
        blocks += contents(folder + u'/' + entry + "/online"_L1) == "1" ? 1 : 0;
    return blocks > 0 ? std::optional(blocks * blockSize) : std::nullopt;
}
