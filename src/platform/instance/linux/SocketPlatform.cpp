#include "platform/instance/SocketPlatform.h"

#include <sys/socket.h>

QByteArray SocketPlatform::runtimeFolder()
{
    return qgetenv("XDG_RUNTIME_DIR");
}

QByteArray SocketPlatform::shortPath(int folder, const QByteArray &, const QByteArray &name)
{
    return "/proc/self/fd/" + QByteArray::number(folder) + '/' + name;
}

std::optional<uid_t> SocketPlatform::peerUser(int socket)
{
    ucred peer = {};
    socklen_t size = sizeof peer;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return std::nullopt;
    return peer.uid;
}
