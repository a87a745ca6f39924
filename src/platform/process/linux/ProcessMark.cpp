#include "platform/process/ProcessMark.h"

#include <QFile>

#include <unistd.h>

namespace {

QByteArray contentOf(const QByteArray &path)
{
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray programOf(const QByteArray &folder)
{
    char path[4096] = {};
    const ssize_t length = ::readlink((folder + "exe").constData(), path, sizeof path);
    QByteArray program(path, length > 0 ? length : 0);
    // An installation removes the program of an engine that runs.
    const QByteArray mark = " (deleted)";
    if (program.endsWith(mark))
        program.chop(mark.size());
    return program;
}

} // namespace

std::optional<ProcessMark> ProcessMark::of(pid_t id)
{
    const QByteArray folder = "/proc/" + QByteArray::number(id) + '/';
    const QByteArray status = contentOf(folder + "stat");
    // "ID (NAME) STATE …", where the name may hold anything. What follows it is counted from the state; see
    // proc(5), where that is field 3 and the start, in clock ticks since the machine's, field 22.
    const QByteArrayList fields = status.mid(status.lastIndexOf(')') + 2).split(' ');
    const QByteArray state = fields.value(0);
    const QByteArray start = fields.value(19);
    const QByteArray boot = contentOf("/proc/sys/kernel/random/boot_id").trimmed();
    if (start.isEmpty() || boot.isEmpty() || state == "Z" || state == "X")
        return std::nullopt;
    return ProcessMark{id, boot + ' ' + start, programOf(folder)};
}
