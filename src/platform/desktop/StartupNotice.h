// Tells the desktop that a launch has ended with a window that was there before.
#pragma once

#include <QByteArray>
#include <QtGui/qwindowdefs.h>

// Under X11, asks for `window` to be made the active one as of the moment that the user made the launch
// `startupId`, which is part of it, and ends the pointer's sign that something is starting. Nothing anywhere
// else.
void noticeStartup(WId window, const QByteArray &startupId);
