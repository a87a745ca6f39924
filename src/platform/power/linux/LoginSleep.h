// The machine's sleep as the login manager of the system (org.freedesktop.login1) knows it, and the user's
// session beside it.
#pragma once

#include "platform/power/MachineSleep.h"
#include "platform/power/linux/SessionInhibition.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>

class LoginSleep final : public MachineSleep
{
    Q_OBJECT

public:
    explicit LoginSleep(QObject *parent = nullptr);

    void prevent(const QString &reason) override;
    void allow() override;

private Q_SLOTS:
    void tell(bool isAsleep);

private:
    SessionInhibition m_session;
    QDBusConnection m_bus;
    bool m_isWanted = false;
    bool m_isAsking = false;
    QDBusUnixFileDescriptor m_lock; // held for as long as it is open
};
