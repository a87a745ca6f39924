// Facts about the machine the program runs on.
#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

#include <sys/types.h>

// The memory that is built into the machine, in bytes; 0 when the system does not tell.
quint64 physicalMemory();

// The bytes that the user can still fill on the volume that holds `path`, or nothing when there is no such
// path or the system does not tell. Any thread.
std::optional<qint64> availableCapacity(const QString &path);

// The user whose program listens on a TCP port of the loopback address, or nothing when nobody does or the
// system does not tell.
std::optional<uid_t> listeningUser(int port);
