#include "platform/instance/ProfileLock.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace {

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;

// Without waiting: for a pipe's other end, a device's readiness.
constexpr int openFlags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

bool isOwnFile(const struct stat &facts)
{
    // A second name would make one lock of two profiles.
    return S_ISREG(facts.st_mode) && facts.st_uid == ::geteuid() && facts.st_nlink <= 1;
}

// A link, a folder, a socket, somebody else's file; a disk that is read-only or broken is another matter.
bool saysWhatStandsThere(int error)
{
    return error == ELOOP || error == EISDIR || error == ENXIO || error == EOPNOTSUPP || error == EACCES ||
           error == EPERM;
}

} // namespace

ProfileLock::ProfileLock(const QString &folder) : m_folder(folder) {}

ProfileLock::State ProfileLock::open()
{
    const QByteArray name = QFile::encodeName(path());
    m_file = Descriptor(::open(name.constData(), openFlags, ownerOnly));
    struct stat facts = {};
    if (!m_file.isOpen()) {
        m_error = errno;
        return saysWhatStandsThere(m_error) && ::lstat(name.constData(), &facts) == 0 ? State::blocked
                                                                                      : State::failed;
    }
    if (::fstat(m_file.number(), &facts) != 0 || !isOwnFile(facts))
        return State::blocked;
    return State::held;
}

ProfileLock::State ProfileLock::take()
{
    if (const State opened = open(); opened != State::held)
        return opened;
    if (::flock(m_file.number(), LOCK_EX | LOCK_NB) != 0) {
        m_error = errno;
        if (m_error == EWOULDBLOCK || m_error == EINTR)
            return State::held;
        return m_error == ENOLCK || m_error == EOPNOTSUPP || m_error == ENOSYS ? State::unsupported
                                                                               : State::failed;
    }
    if (!isStillInPlace())
        return State::held;
    ::fchmod(m_file.number(), ownerOnly);
    return State::taken;
}

// A file that was removed between being opened and being locked keeps nobody out.
bool ProfileLock::isStillInPlace() const
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(m_file.number(), &opened) == 0 &&
           ::lstat(QFile::encodeName(path()).constData(), &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

void ProfileLock::tell(const Holder &holder) const
{
    const QByteArray text = QByteArray::number(holder.process) + '\n' + QFile::encodeName(holder.socket);
    if (::ftruncate(m_file.number(), 0) == 0) [[maybe_unused]]
        const auto written = ::pwrite(m_file.number(), text.constData(), size_t(text.size()), 0);
}

ProfileLock::Holder ProfileLock::told() const
{
    std::array<char, 8192> bytes{};
    const ssize_t length = ::pread(m_file.number(), bytes.data(), bytes.size(), 0);
    const QByteArray text(bytes.data(), std::max<ssize_t>(length, 0));
    const qsizetype end = text.indexOf('\n');
    if (end < 0)
        return {};
    const qint64 process = text.first(end).toLongLong();
    return {std::max<qint64>(process, 0), QFile::decodeName(text.sliced(end + 1))};
}
