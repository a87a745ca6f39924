#include "support/TarArchive.h"

#include <QProcess>
#include <QString>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block = 512;

QByteArray octal(qint64 number, int digits)
{
    return QByteArray::number(number, 8).rightJustified(digits, '0');
}

} // namespace

TarArchive TarArchive::replaced(const QByteArray &before, const QByteArray &after) const
{
    TarArchive result(*this);
    for (Entry &entry : result.m_entries) {
        entry.name.replace(before, after);
        if (entry.kind != file)
            entry.content.replace(before, after);
    }
    return result;
}

QByteArray TarArchive::encoded(const Entry &entry)
{
    const QByteArray data = entry.kind == file ? entry.content : QByteArray();
    QByteArray header(block, '\0');
    const auto put = [&header](qsizetype at, const QByteArray &value) {
        header.replace(at, value.size(), value);
    };
    put(0, entry.name);
    put(100, octal(entry.mode, 7));
    put(108, octal(12'345, 7)); // an owner that nobody is
    put(116, octal(12'345, 7));
    put(124, octal(data.size(), 11));
    put(136, octal(1'700'000'000, 11));
    put(148, QByteArray(8, ' '));
    put(156, QByteArray(1, entry.kind));
    if (entry.kind == hardLink || entry.kind == symbolicLink)
        put(157, entry.content);
    put(257, QByteArray("ustar\00000", 8));
    put(329, octal(1, 7)); // the null device, for a device
    put(337, octal(3, 7));
    const auto sum = std::accumulate(header.begin(), header.end(), qint64(0),
                                     [](qint64 total, char byte) { return total + uchar(byte); });
    put(148, octal(sum, 6) + '\0');
    return header + data + QByteArray((block - data.size() % block) % block, '\0');
}

QByteArray TarArchive::compressed() const
{
    QProcess tool;
#ifdef Q_OS_MACOS
    tool.start(u"gzip"_s, {u"-1"_s});
#else
    tool.start(u"zstd"_s, {u"-1"_s, u"-q"_s});
#endif
    for (const Entry &entry : m_entries)
        tool.write(encoded(entry));
    tool.write(QByteArray(2 * block, '\0'));
    tool.closeWriteChannel();
    if (!tool.waitForFinished() || tool.exitCode() != 0)
        qFatal("The archive could not be compressed: %s", qUtf8Printable(tool.errorString()));
    return tool.readAllStandardOutput();
}
