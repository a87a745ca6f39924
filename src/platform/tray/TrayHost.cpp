#include "platform/tray/TrayHost.h"

TrayHost::TrayHost(QObject *parent) : QObject(parent) {}

void TrayHost::setPresent(bool present)
{
    if (std::exchange(m_present, present) != present)
        Q_EMIT presentChanged();
}
