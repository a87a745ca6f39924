// Sockets in the file system by which programs of one user meet. A program of another user is not believed at
// either end, wherever the socket lies: the system says whose it is.
#pragma once

#include "platform/process/Descriptor.h"

#include <QString>

namespace UserSocket {

// The folder that the system keeps for this user's sockets; empty where there is none that is the user's own
// and closed to others.
QString runtimeFolder();

// A socket that listens at `path`, open to its owner alone, in place of a socket that stands there. None,
// with errno set, where that cannot be.
Descriptor listenAt(const QString &path);

// A connection to the program of this user that listens at `path`; none where there is no such program.
Descriptor connectTo(const QString &path);

// The next connection of this user's that waits at `listening`; none where no more do. Others are turned
// away.
Descriptor accept(int listening);

} // namespace UserSocket
