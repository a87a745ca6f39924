#include "ui/app/DesktopTies.h"

#include "platform/launcher/LauncherProgress.h"
#include "platform/power/MachineSleep.h"
#include "ui/app/QtDesktop.h"

#include <QGuiApplication>

namespace {

bool isUserHere()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

} // namespace

DesktopTies::DesktopTies(AppState &state, QtDesktop &desktop)
    : m_notifications(NotificationCenter::ofDesktop()),
      m_launcher(LauncherProgress::ofDesktop()),
      m_sleep(MachineSleep::ofSystem()),
      m_presence(state, {*m_notifications, *m_launcher, *m_sleep, isUserHere})
{
    QObject::connect(&m_presence, &DesktopPresence::frontRequested, &m_presence,
                     [&desktop](const Activation &activation) { desktop.bringToFront(activation); });
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &m_presence, [this] {
        if (isUserHere())
            m_presence.welcome();
    });
}

DesktopTies::~DesktopTies() = default;
