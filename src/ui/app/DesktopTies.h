// The running program's ties to the services of the desktop that a user who looks elsewhere meets it by.
#pragma once

#include "core/app/DesktopPresence.h"

#include <memory>

class AppState;
class QtDesktop;

class DesktopTies
{
public:
    // Both must outlive this.
    DesktopTies(AppState &state, QtDesktop &desktop);
    // What the desktop shows of the program goes.
    ~DesktopTies();

private:
    const std::unique_ptr<NotificationCenter> m_notifications;
    const std::unique_ptr<LauncherProgress> m_launcher;
    const std::unique_ptr<MachineSleep> m_sleep;
    DesktopPresence m_presence;
};
