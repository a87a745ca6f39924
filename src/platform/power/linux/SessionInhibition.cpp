#include "platform/power/linux/SessionInhibition.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;

} // namespace

SessionInhibition::SessionInhibition(QObject *parent) : QObject(parent), m_bus(QDBusConnection::sessionBus())
{
}

SessionInhibition::~SessionInhibition()
{
    allow();
}

void SessionInhibition::prevent(const QString &reason)
{
    m_isWanted = true;
    if (!m_bus.isConnected() || m_isAsking || !m_request.isEmpty())
        return;
    m_isAsking = true;
    constexpr uint suspending = 4;
    const QString noWindow = u""_s;
    QDBusMessage inhibit = QDBusMessage::createMethodCall(service, u"/org/freedesktop/portal/desktop"_s,
                                                          u"org.freedesktop.portal.Inhibit"_s, u"Inhibit"_s);
    inhibit << noWindow << suspending << QVariantMap{{u"reason"_s, reason}};
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(inhibit), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        answer->deleteLater();
        m_isAsking = false;
        if (reply.isValid() && m_isWanted)
            m_request = reply.value().path();
        else if (reply.isValid())
            close(reply.value().path());
    });
}

void SessionInhibition::allow()
{
    m_isWanted = false;
    if (!m_request.isEmpty())
        close(std::exchange(m_request, {}));
}

void SessionInhibition::close(const QString &request)
{
    m_bus.send(
        QDBusMessage::createMethodCall(service, request, u"org.freedesktop.portal.Request"_s, u"Close"_s));
}
