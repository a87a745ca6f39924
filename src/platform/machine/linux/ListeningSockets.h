// Who listens on the ports of this machine, read from the kernel's tables of TCP sockets.
#pragma once

#include <QByteArray>

#include <optional>

#include <sys/types.h>

// The user of the socket that a connection to 127.0.0.1 and `port` reaches, going by the tables of
// /proc/net/tcp and /proc/net/tcp6 (see proc(5)). One that listens on that very address comes before one that
// listens on all.
std::optional<uid_t> listenerIn(const QByteArray &tcp, const QByteArray &tcp6, int port);
