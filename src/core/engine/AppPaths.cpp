#include "core/engine/AppPaths.h"

#include "platform/files/PrivateFolder.h"
#include "platform/machine/Machine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QString &replacedApplicationDir()
{
    static QString folder;
    return folder;
}

struct CloseFolder
{
    void operator()(DIR *folder) const { ::closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

Folder openFolder(const std::string &path, int flags)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
    if (descriptor < 0)
        return nullptr;
    Folder folder(::fdopendir(descriptor));
    if (!folder)
        ::close(descriptor);
    return folder;
}

// Not every file system tells an entry's type along with its name.
int entryType(int folder, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type;
    struct stat facts = {};
    if (::fstatat(folder, entry.d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
        return DT_UNKNOWN;
    return S_ISDIR(facts.st_mode) ? DT_DIR : S_ISREG(facts.st_mode) ? DT_REG : DT_UNKNOWN;
}

// Gets each regular file below a folder: the open folder it lies in, that folder's path, and the file's name.
// The walk goes on while it returns true.
using Visit = std::function<bool(int folder, const std::string &path, const char *name)>;

// Depth first, the files of a folder before its subfolders. Symbolic links are passed over, but `root` may be
// one. A single folder is open at a time, however deep the tree is.
void walk(const QString &root, const StopToken &stop, const Visit &visit)
{
    std::vector<std::string> pending{QFile::encodeName(root).toStdString()};
    int flags = 0;
    while (!pending.empty()) {
        const std::string path = std::move(pending.back());
        pending.pop_back();
        const Folder folder = openFolder(path, std::exchange(flags, O_NOFOLLOW));
        if (!folder)
            continue;
        const int descriptor = ::dirfd(folder.get());
        const auto firstSubfolder = static_cast<std::ptrdiff_t>(pending.size());
        while (const dirent *entry = ::readdir(folder.get())) {
            const std::string_view name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            const int type = entryType(descriptor, *entry);
            if (type == DT_DIR)
                pending.push_back(path + '/' + entry->d_name);
            else if (type == DT_REG && (stop.stopRequested() || !visit(descriptor, path, entry->d_name)))
                return;
        }
        std::reverse(pending.begin() + firstSubfolder, pending.end());
    }
}

class ProbeSocket
{
public:
#ifdef Q_OS_LINUX
    ProbeSocket() : m_descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        // Connections that an ended engine has closed keep its port busy for a minute otherwise; a program
        // that listens is noticed all the same. Elsewhere the option would hide such a program.
        const int on = 1;
        ::setsockopt(m_descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    }
#else
    ProbeSocket() : m_descriptor(::socket(AF_INET, SOCK_STREAM, 0))
    {
        ::fcntl(m_descriptor, F_SETFD, FD_CLOEXEC);
    }
#endif
    ~ProbeSocket()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    ProbeSocket(const ProbeSocket &) = delete;
    ProbeSocket &operator=(const ProbeSocket &) = delete;

    bool bind(int port) const
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_ANY);
        address.sin_port = htons(static_cast<quint16>(port));
        return m_descriptor >= 0 &&
               ::bind(m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    }

private:
    const int m_descriptor;
};

constexpr int lastPort = 65535;

} // namespace

QString AppPaths::applicationDir()
{
    if (!replacedApplicationDir().isEmpty())
        return replacedApplicationDir();
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/Tarnwick");
}

void AppPaths::setApplicationDir(const QString &folder)
{
    replacedApplicationDir() = folder;
}

QString AppPaths::engineDir()
{
    return applicationDir() + QStringLiteral("/engine");
}

QString AppPaths::modelsDir()
{
    return applicationDir() + QStringLiteral("/models");
}

QString AppPaths::chatsDir()
{
    return applicationDir() + QStringLiteral("/chats");
}

QString AppPaths::tempDir()
{
    return applicationDir() + QStringLiteral("/tmp");
}

void AppPaths::ensure(const QString &folder)
{
    makePrivateFolder(folder);
}

qint64 AppPaths::directorySize(const QString &folder, const StopToken &stop)
{
    qint64 total = 0;
    walk(folder, stop, [&total](int descriptor, const std::string &, const char *name) {
        struct stat facts = {};
        if (::fstatat(descriptor, name, &facts, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(facts.st_mode))
            total += facts.st_size;
        return true;
    });
    return total;
}

std::optional<qint64> AppPaths::freeBytes(const QString &path)
{
    return availableCapacity(path);
}

std::optional<QString> AppPaths::findBinary(const QString &folder)
{
    const QFileInfo direct(folder + QStringLiteral("/ollama"));
    if (direct.exists() && !direct.isDir())
        return direct.filePath();
    std::optional<QString> found;
    walk(folder, {}, [&found](int, const std::string &path, const char *name) {
        if (std::string_view(name) == "ollama")
            found = QFile::decodeName((path + "/ollama").c_str());
        return !found;
    });
    return found;
}

std::optional<int> AppPaths::findFreePort(int base)
{
    for (qint64 port = qint64(base) + 1; port <= qint64(base) + 200 && port <= lastPort; ++port) {
        if (portIsFree(static_cast<int>(port)))
            return static_cast<int>(port);
    }
    return std::nullopt;
}

bool AppPaths::portIsFree(int port)
{
    return port >= 1 && port <= lastPort && ProbeSocket().bind(port);
}
