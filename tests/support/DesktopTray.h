// The tray of a test's desktop, on the session bus, with what its user does there. It comes when the test
// says so.
#pragma once

#include "support/TrayWatcher.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTest>
#include <QThread>

#include <numeric>

class DesktopTray
{
public:
    DesktopTray()
    {
        m_bus.registerObject(TrayWatcher::path, &m_watcher,
                             QDBusConnection::ExportScriptableContents |
                                 QDBusConnection::ExportAllProperties);
        m_watcher.moveToThread(&m_thread);
        m_thread.start();
    }
    ~DesktopTray()
    {
        m_thread.quit();
        m_thread.wait();
    }
    DesktopTray(const DesktopTray &) = delete;
    DesktopTray &operator=(const DesktopTray &) = delete;

    bool come() { return m_bus.registerService(TrayWatcher::service); }
    bool leave() { return m_bus.unregisterService(TrayWatcher::service); }
    // Whether something shows the items of the tray, which is told to all.
    bool setShown(bool shown)
    {
        m_watcher.setHost(shown);
        return m_bus.send(QDBusMessage::createSignal(TrayWatcher::path, TrayWatcher::service,
                                                     shown
                                                         ? QStringLiteral("StatusNotifierHostRegistered")
                                                         : QStringLiteral("StatusNotifierHostUnregistered")));
    }
    // How many items have come so far.
    qsizetype items() const { return m_watcher.items().size(); }

    // A click on the newest item; false when it cannot be sent.
    bool activate()
    {
        QDBusMessage click = toItem(QStringLiteral("/StatusNotifierItem"),
                                    QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Activate"));
        click << 0 << 0;
        return m_bus.send(click);
    }
    // A click on an entry of the newest item's menu; false when there is no such entry.
    bool choose(const QString &entry)
    {
        QList<int> ids(50);
        std::iota(ids.begin(), ids.end(), 1);
        QDBusMessage question = toMenu(QStringLiteral("GetGroupProperties"));
        question << QVariant::fromValue(ids) << QStringList{QStringLiteral("label")};
        const QDBusMessage answer = m_bus.call(question, QDBus::Block);
        if (answer.type() != QDBusMessage::ReplyMessage)
            return false;
        const auto entries = answer.arguments().constFirst().value<QDBusArgument>();
        int chosen = 0;
        entries.beginArray();
        while (!entries.atEnd()) {
            int id = 0;
            QVariantMap facts;
            entries.beginStructure();
            entries >> id >> facts;
            entries.endStructure();
            if (facts.value(QStringLiteral("label")) == entry)
                chosen = id;
        }
        entries.endArray();
        QDBusMessage event = toMenu(QStringLiteral("Event"));
        event << chosen << QStringLiteral("clicked") << QVariant::fromValue(QDBusVariant(QString())) << 0U;
        return chosen > 0 && m_bus.send(event);
    }

private:
    QDBusMessage toItem(const QString &path, const QString &interface, const QString &method) const
    {
        return QDBusMessage::createMethodCall(m_watcher.items().constLast(), path, interface, method);
    }
    QDBusMessage toMenu(const QString &method) const
    {
        return toItem(QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"), method);
    }

    // Answers on a thread of its own, since Qt waits for it on the main one.
    QThread m_thread;
    TrayWatcher m_watcher;
    QDBusConnection m_bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("tray"));
};
