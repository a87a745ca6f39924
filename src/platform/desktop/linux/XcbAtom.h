// Names that X11 clients have agreed upon, as the numbers that stand for them on one server.
#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

// Waits for the server's answer; XCB_ATOM_NONE when the connection is broken.
xcb_atom_t xcbAtom(xcb_connection_t *connection, const QByteArray &name);
