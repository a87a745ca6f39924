// Notifications by the service org.freedesktop.Notifications of the session bus, by version 1.2 of what
// freedesktop.org says of it, with the token of 1.3.
#pragma once

#include "platform/notification/NotificationCenter.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QHash>
#include <QList>

class SessionNotifications final : public NotificationCenter
{
    Q_OBJECT

public:
    explicit SessionNotifications(QObject *parent = nullptr);
    ~SessionNotifications() override;

    void show(const Notification &notification) override;
    void withdrawAll() override;

private Q_SLOTS:
    void takeToken(uint id, const QString &token);
    void invoke(uint id, const QString &action);
    void forget(uint id);

private:
    void sendNext();
    void send(const Notification &notification, bool isMarkup);
    void close(uint id);

    QDBusConnection m_bus;
    QList<Notification> m_waiting; // one at a time, so that the number of what is to be replaced is known
    bool m_isSending = false;
    bool m_isWithdrawn = false; // what is being sent
    QHash<QString, uint> m_ids; // of what is shown, by its key
    uint m_tokenId = 0;         // for which m_token came
    QByteArray m_token;
};
