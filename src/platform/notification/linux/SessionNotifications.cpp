#include "platform/notification/linux/SessionNotifications.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QGuiApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;
const QString click = u"default"_s; // the action of the notification itself, by the standard

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(service, path, service, method);
}

} // namespace

SessionNotifications::SessionNotifications(QObject *parent)
    : NotificationCenter(parent), m_bus(QDBusConnection::sessionBus())
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(service, path, service, u"ActivationToken"_s, this, SLOT(takeToken(uint, QString)));
    m_bus.connect(service, path, service, u"ActionInvoked"_s, this, SLOT(invoke(uint, QString)));
    m_bus.connect(service, path, service, u"NotificationClosed"_s, this, SLOT(forget(uint)));
    // Another server gives the same numbers to others' notifications.
    auto *owner = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { m_ids.clear(); });
}

SessionNotifications::~SessionNotifications()
{
    withdrawAll();
}

void SessionNotifications::show(const Notification &notification)
{
    if (!m_bus.isConnected())
        return;
    m_waiting.removeIf([&](const Notification &other) { return other.key == notification.key; });
    m_waiting.append(notification);
    sendNext();
}

void SessionNotifications::withdrawAll()
{
    m_waiting.clear();
    m_isWithdrawn = m_isSending;
    for (const uint id : std::exchange(m_ids, {}))
        close(id);
}

void SessionNotifications::close(uint id)
{
    QDBusMessage withdrawal = call(u"CloseNotification"_s);
    withdrawal << id;
    m_bus.send(withdrawal);
}

void SessionNotifications::sendNext()
{
    if (m_isSending || m_waiting.isEmpty())
        return;
    m_isSending = true;
    // Asked each time: a desktop may exchange its server.
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call(u"GetCapabilities"_s)), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QStringList> reply = *answer;
        answer->deleteLater();
        m_isWithdrawn = false;
        if (reply.isValid() && !m_waiting.isEmpty()) {
            send(m_waiting.takeFirst(), reply.value().contains("body-markup"_L1));
            return;
        }
        // There is no server, and none for the others either.
        m_isSending = false;
        m_waiting.clear();
    });
}

void SessionNotifications::send(const Notification &notification, bool isMarkup)
{
    constexpr int serversOwnTime = -1;
    const QString noIcon = u""_s; // that of the desktop entry
    const QVariantMap hints{{u"desktop-entry"_s, QGuiApplication::desktopFileName()}};
    QDBusMessage notify = call(u"Notify"_s);
    notify << QCoreApplication::applicationName() << m_ids.value(notification.key, 0U) << noIcon
           << notification.title << (isMarkup ? notification.body.toHtmlEscaped() : notification.body)
           << QStringList{click, tr("Show")} << hints << serversOwnTime;
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(notify), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, key = notification.key] {
        const QDBusPendingReply<uint> reply = *answer;
        answer->deleteLater();
        m_isSending = false;
        if (reply.isValid() && m_isWithdrawn)
            close(reply.value());
        else if (reply.isValid())
            m_ids.insert(key, reply.value());
        sendNext();
    });
}

void SessionNotifications::takeToken(uint id, const QString &token)
{
    m_tokenId = id;
    m_token = token.toLatin1();
}

void SessionNotifications::invoke(uint id, const QString &action)
{
    const QString key = m_ids.key(id);
    if (key.isEmpty() || action != click)
        return;
    // On X11 it is what a launch is given for the same purpose.
    const QByteArray token = m_tokenId == id ? std::exchange(m_token, {}) : QByteArray();
    Q_EMIT activated(key, Activation::isValid(token) ? Activation{token, token} : Activation());
}

void SessionNotifications::forget(uint id)
{
    m_ids.removeIf([id](QHash<QString, uint>::iterator shown) { return shown.value() == id; });
}

std::unique_ptr<NotificationCenter> NotificationCenter::ofDesktop()
{
    return std::make_unique<SessionNotifications>();
}
