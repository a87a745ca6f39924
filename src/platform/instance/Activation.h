// What a desktop gives a launch so that its window may come to the front: without it, a window manager that
// guards the user's focus lets a window that was there before stay behind.
#pragma once

#include <QByteArray>

struct Activation
{
    QByteArray token;     // of Wayland's xdg-activation protocol; empty: none
    QByteArray startupId; // of X11's startup notification; empty: none

    bool operator==(const Activation &) const = default;

    // What XDG_ACTIVATION_TOKEN and DESKTOP_STARTUP_ID say. To be read before Qt's platform plugin takes
    // them.
    static Activation fromEnvironment();
    // Both are for one launch alone and nothing that child processes should inherit.
    static void clearEnvironment();

    // Whether `text` can be either: visible ASCII, 1 to 256 bytes.
    static bool isValid(const QByteArray &text);
};
