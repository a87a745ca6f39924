#include "platform/instance/UserSocket.h"

#include "platform/instance/SocketPlatform.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

// The folder of a socket, held open as long as its address is used.
class Address
{
public:
    explicit Address(const QString &path)
        : m_name(QFile::encodeName(QFileInfo(path).fileName())),
          m_folder(::open(QFile::encodeName(QFileInfo(path).path()).constData(),
                          O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        const QByteArray shortest =
            SocketPlatform::shortPath(m_folder.number(), QFile::encodeName(QFileInfo(path).path()), m_name);
        m_address.sun_family = AF_UNIX;
        m_fits = size_t(shortest.size()) < sizeof m_address.sun_path;
        if (m_fits)
            std::memcpy(m_address.sun_path, shortest.constData(), size_t(shortest.size()));
    }

    // False, with errno set, where there is no such folder or the path is too long.
    bool isUsable() const
    {
        if (!m_fits)
            errno = ENAMETOOLONG;
        return m_fits && m_folder.isOpen();
    }

    // Applies bind() or connect().
    template <class Call>
    bool apply(Call call, int socket) const
    {
        return call(socket, reinterpret_cast<const sockaddr *>(&m_address), socklen_t(sizeof m_address)) == 0;
    }

    void removeSocket() const
    {
        struct stat facts = {};
        if (::fstatat(m_folder.number(), m_name.constData(), &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISSOCK(facts.st_mode))
            ::unlinkat(m_folder.number(), m_name.constData(), 0);
    }

    bool closeToOthers() const
    {
        return ::fchmodat(m_folder.number(), m_name.constData(), S_IRUSR | S_IWUSR, 0) == 0;
    }

private:
    QByteArray m_name;
    Descriptor m_folder;
    sockaddr_un m_address = {};
    bool m_fits = false;
};

void makePrivateAndPatient(int socket)
{
    ::fcntl(socket, F_SETFD, FD_CLOEXEC);
    ::fcntl(socket, F_SETFL, O_NONBLOCK);
}

Descriptor makeSocket()
{
    Descriptor made(::socket(AF_UNIX, SOCK_STREAM, 0));
    makePrivateAndPatient(made.number());
    return made;
}

bool isOurs(int socket)
{
    return SocketPlatform::peerUser(socket) == ::geteuid();
}

} // namespace

QString UserSocket::runtimeFolder()
{
    const QByteArray path = SocketPlatform::runtimeFolder();
    const Descriptor folder(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat facts = {};
    const bool isOwn = path.startsWith('/') && folder.isOpen() && ::fstat(folder.number(), &facts) == 0 &&
                       facts.st_uid == ::geteuid() && (facts.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return isOwn ? QFile::decodeName(path) : QString();
}

Descriptor UserSocket::listenAt(const QString &path)
{
    const Address address(path);
    Descriptor socket = makeSocket();
    if (!address.isUsable() || !socket.isOpen())
        return Descriptor();
    address.removeSocket();
    if (!address.apply(::bind, socket.number()) || !address.closeToOthers() ||
        ::listen(socket.number(), SOMAXCONN) != 0)
        return Descriptor();
    return socket;
}

Descriptor UserSocket::connectTo(const QString &path)
{
    const Address address(path);
    Descriptor socket = makeSocket();
    if (!address.isUsable() || !socket.isOpen() || !address.apply(::connect, socket.number()) ||
        !isOurs(socket.number()))
        return Descriptor();
    return socket;
}

Descriptor UserSocket::accept(int listening)
{
    for (;;) {
        Descriptor caller(::accept(listening, nullptr, nullptr));
        if (!caller.isOpen() || isOurs(caller.number())) {
            makePrivateAndPatient(caller.number());
            return caller;
        }
    }
}
