#include "Resources.h"

#include <QDir>
#include <QFile>

#include <csignal>

#include <malloc.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr double mebibyte = 1024.0 * 1024.0;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<pid_t> childrenOf(pid_t parent)
{
    QList<pid_t> children;
    const QStringList entries = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool isProcess = false;
        const pid_t id = entry.toInt(&isProcess);
        if (!isProcess)
            continue;
        // The name in parentheses may hold anything; behind it come the state and the parent.
        const QByteArray status = contentOf(u"/proc/%1/stat"_s.arg(id));
        const QByteArrayList fields = status.sliced(status.lastIndexOf(')') + 1).split(' ');
        if (fields.value(2).toInt() == parent)
            children.append(id);
    }
    return children;
}

} // namespace

Resources Resources::now()
{
    Resources found;
    found.threads =
        static_cast<int>(QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
    // The listing is itself an open handle, and gone when it is looked at.
    const QStringList handles =
        QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &handle : handles) {
        char target[256] = {};
        const QByteArray path = "/proc/self/fd/" + handle.toLatin1();
        if (::readlink(path.constData(), target, sizeof target - 1) > 0)
            ++(QByteArrayView(target).startsWith("socket:") ? found.sockets : found.otherFiles);
    }
    found.processes = static_cast<int>(childProcesses().size());
    const QByteArrayList pages = contentOf(u"/proc/self/statm"_s).split(' ');
    found.resident = pages.value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
    const struct mallinfo2 heap = ::mallinfo2();
    found.heap = static_cast<qint64>(heap.uordblks + heap.hblkhd);
    return found;
}

bool Resources::holdsNoMoreThan(const Resources &before) const
{
    return threads <= before.threads && sockets <= before.sockets && otherFiles <= before.otherFiles &&
           processes <= before.processes;
}

QString Resources::text() const
{
    return u"%1 threads, %2 sockets, %3 other handles, %4 processes, %5 MiB resident, %6 MiB of heap"_s
        .arg(threads)
        .arg(sockets)
        .arg(otherFiles)
        .arg(processes)
        .arg(static_cast<double>(resident) / mebibyte, 0, 'f', 1)
        .arg(static_cast<double>(heap) / mebibyte, 0, 'f', 1);
}

QList<pid_t> childProcesses()
{
    return childrenOf(::getpid());
}

bool killPrograms()
{
    bool killed = false;
    for (const pid_t keeper : childProcesses()) {
        for (const pid_t program : childrenOf(keeper))
            killed = ::kill(program, SIGKILL) == 0 || killed;
    }
    return killed;
}
