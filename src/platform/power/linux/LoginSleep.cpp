#include "platform/power/linux/LoginSleep.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.login1"_s;
const QString path = u"/org/freedesktop/login1"_s;
const QString interface = u"org.freedesktop.login1.Manager"_s;

} // namespace

LoginSleep::LoginSleep(QObject *parent) : MachineSleep(parent), m_bus(QDBusConnection::systemBus())
{
    if (m_bus.isConnected())
        m_bus.connect(service, path, interface, u"PrepareForSleep"_s, this, SLOT(tell(bool)));
}

void LoginSleep::prevent(const QString &reason)
{
    m_session.prevent(reason);
    m_isWanted = true;
    if (!m_bus.isConnected() || m_isAsking || m_lock.isValid())
        return;
    m_isAsking = true;
    QDBusMessage inhibit = QDBusMessage::createMethodCall(service, path, interface, u"Inhibit"_s);
    inhibit << u"sleep:idle"_s << QCoreApplication::applicationName() << reason << u"block"_s;
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(inhibit), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *answer;
        answer->deleteLater();
        m_isAsking = false;
        if (reply.isValid() && m_isWanted)
            m_lock = reply.value();
    });
}

void LoginSleep::allow()
{
    m_session.allow();
    m_isWanted = false;
    m_lock = QDBusUnixFileDescriptor();
}

void LoginSleep::tell(bool isAsleep)
{
    if (isAsleep)
        Q_EMIT begins();
    else
        Q_EMIT ended();
}

std::unique_ptr<MachineSleep> MachineSleep::ofSystem()
{
    return std::make_unique<LoginSleep>();
}
