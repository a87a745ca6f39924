// What the systems do differently about sockets that have a path.
#pragma once

#include <QByteArray>

#include <optional>

#include <sys/types.h>

namespace SocketPlatform {

// The folder that the system says it keeps for what runs of this user; empty where it names none. Whether it
// is closed to others, the caller looks.
QByteArray runtimeFolder();

// A path of the entry `name` in the open folder `folder`, whose path is `path`, that is as short as can be
// had: the address of a socket holds about a hundred bytes.
QByteArray shortPath(int folder, const QByteArray &path, const QByteArray &name);

// The effective user of the program at the other end, as the system knows it.
std::optional<uid_t> peerUser(int socket);

} // namespace SocketPlatform
