#include "platform/instance/SocketPlatform.h"

#include <array>

#include <unistd.h>

QByteArray SocketPlatform::runtimeFolder()
{
    // Each user's own, some fifty bytes long: what stands in it fits.
    std::array<char, 1024> path{};
    const size_t size = ::confstr(_CS_DARWIN_USER_TEMP_DIR, path.data(), path.size());
    return size > 0 && size <= path.size() ? QByteArray(path.data()) : QByteArray();
}

QByteArray SocketPlatform::shortPath(int, const QByteArray &path, const QByteArray &name)
{
    return path + '/' + name;
}

std::optional<uid_t> SocketPlatform::peerUser(int socket)
{
    uid_t user = 0;
    gid_t group = 0;
    if (::getpeereid(socket, &user, &group) != 0)
        return std::nullopt;
    return user;
}
