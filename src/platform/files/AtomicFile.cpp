#include "platform/files/AtomicFile.h"

#include "platform/error/SystemError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Plain system calls throughout: QSaveFile neither says which error made it fail nor lets the temporary
// file's name be told from a stranger's.

[[noreturn]] void fail(int code)
{
    throw SystemError(code);
}

template <class Call>
auto retried(Call call)
{
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

// A file with a fresh name in the folder of the one it is to replace; gone again unless it got there.
class TemporaryFile
{
public:
    TemporaryFile(const QString &folder, mode_t mode)
    {
        do {
            const QString number = u"%1"_s.arg(QRandomGenerator::system()->generate64(), 16, 16, QChar(u'0'));
            m_name = QFile::encodeName(folder + "/.tarnwick-"_L1 + number + ".tmp"_L1);
            m_descriptor = retried(
                [&] { return ::open(m_name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode); });
        } while (m_descriptor < 0 && errno == EEXIST);
        if (m_descriptor < 0)
            fail(errno);
    }

    ~TemporaryFile()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        if (!m_replaced)
            ::unlink(m_name.constData());
    }

    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    void setMode(mode_t mode) const
    {
        if (::fchmod(m_descriptor, mode) < 0)
            fail(errno);
    }

    void write(const QByteArray &content) const
    {
        const char *rest = content.constData();
        const char *const end = rest + content.size();
        while (rest < end) {
            const ssize_t written =
                retried([&] { return ::write(m_descriptor, rest, static_cast<size_t>(end - rest)); });
            if (written < 0)
                fail(errno);
            rest += written;
        }
    }

    // Without this a power cut could leave the new name with the old nothing behind it. Some file systems
    // have nothing to wait for and say so.
    void waitForDisk() const
    {
        if (retried([&] { return ::fsync(m_descriptor); }) < 0 && errno != EINVAL && errno != ENOTSUP)
            fail(errno);
    }

    void replace(const QByteArray &target)
    {
        // A network file system may only now say that the bytes did not fit. The descriptor is gone even
        // then.
        if (::close(std::exchange(m_descriptor, -1)) < 0 && errno != EINTR)
            fail(errno);
        if (::rename(m_name.constData(), target.constData()) < 0)
            fail(errno);
        m_replaced = true;
    }

private:
    QByteArray m_name;
    int m_descriptor = -1;
    bool m_replaced = false;
};

// Nothing when there is no file to replace. A pipe, a device or a folder is none, and stays.
std::optional<mode_t> modeOf(const QByteArray &path)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) < 0)
        return std::nullopt;
    if (!S_ISREG(status.st_mode))
        fail(S_ISDIR(status.st_mode) ? EISDIR : EEXIST);
    return status.st_mode & 0777;
}

} // namespace

void AtomicFile::write(const QString &path, const QByteArray &content, Access access)
{
    const QString linked = QFileInfo(path).canonicalFilePath();
    const QString target = linked.isEmpty() ? path : linked;
    const QByteArray targetName = QFile::encodeName(target);
    const std::optional<mode_t> mode = modeOf(targetName);

    TemporaryFile file(QFileInfo(target).path(), access == Access::ownerOnly ? 0600 : 0666);
    if (access == Access::asUsual && mode)
        file.setMode(*mode);
    file.write(content);
    file.waitForDisk();
    file.replace(targetName);
}

void AtomicFile::removeLeftovers(const QString &folder)
{
    static const QRegularExpression ours(u"\\A\\.tarnwick-[0-9a-f]{16}\\.tmp\\z"_s);
    const QDir dir(folder);
    for (const QString &name : dir.entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks)) {
        if (ours.match(name).hasMatch())
            QFile::remove(dir.filePath(name));
    }
}
