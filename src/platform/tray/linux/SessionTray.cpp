#include "platform/tray/linux/SessionTray.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString service = u"org.kde.StatusNotifierWatcher"_s;
const QString path = u"/StatusNotifierWatcher"_s;

} // namespace

SessionTray::SessionTray(QObject *parent) : TrayHost(parent)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(2s);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_isPatient = false;
        update();
    });
    connect(&m_older, &XEmbedTray::presentChanged, this, &SessionTray::update);
    watchBus();
    update();
}

void SessionTray::watchBus()
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
        m_hasHost = reply.isValid() && reply.value().variant().toBool();
        update();
    });
}

void SessionTray::settle()
{
    if (m_kind == Kind::open)
        m_kind = m_hasHost ? Kind::onTheBus : Kind::onTheScreen;
}

void SessionTray::update()
{
    const bool isOlderAlone = m_older.isPresent() && !m_hasHost;
    if (!isOlderAlone)
        m_patience.stop();
    else if (m_isPatient && !m_patience.isActive())
        m_patience.start();
    if (m_kind == Kind::open)
        setPresent(m_hasHost || (isOlderAlone && !m_isPatient));
    else
        setPresent(m_kind == Kind::onTheBus ? m_hasHost : m_older.isPresent());
}

std::unique_ptr<TrayHost> TrayHost::ofDesktop()
{
    return std::make_unique<SessionTray>();
}
