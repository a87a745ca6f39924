#include "platform/tray/linux/SessionTray.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.kde.StatusNotifierWatcher"_s;
const QString path = u"/StatusNotifierWatcher"_s;

} // namespace

SessionTray::SessionTray(QObject *parent) : TrayHost(parent)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    auto *owner = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, &SessionTray::ask);
    // The service may be there before anything that shows its items is.
    bus.connect(service, path, service, u"StatusNotifierHostRegistered"_s, this, SLOT(ask()));
    bus.connect(service, path, service, u"StatusNotifierHostUnregistered"_s, this, SLOT(ask()));
    ask();
}

void SessionTray::ask()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call << service << u"IsStatusNotifierHostRegistered"_s;
    call.setAutoStartService(false);
    auto *answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        answer->deleteLater();
        setPresent(reply.isValid() && reply.value().variant().toBool());
    });
}

std::unique_ptr<TrayHost> TrayHost::ofDesktop()
{
    return std::make_unique<SessionTray>();
}
