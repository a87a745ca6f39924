// Watches the session bus for the service that tray items register with.
#pragma once

#include "platform/tray/TrayHost.h"

class SessionTray final : public TrayHost
{
    Q_OBJECT

public:
    explicit SessionTray(QObject *parent = nullptr);

private Q_SLOTS:
    void ask();
};
