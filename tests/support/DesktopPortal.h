// The settings portal of a test's desktop, on the session bus. It comes when the test says so.
#pragma once

#include "support/PortalSettings.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QThread>

struct PortalColor
{
    double red = 0;
    double green = 0;
    double blue = 0;
};

Q_DECLARE_METATYPE(PortalColor)

inline QDBusArgument &operator<<(QDBusArgument &argument, const PortalColor &color)
{
    argument.beginStructure();
    argument << color.red << color.green << color.blue;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, PortalColor &color)
{
    argument.beginStructure();
    argument >> color.red >> color.green >> color.blue;
    argument.endStructure();
    return argument;
}

class DesktopPortal
{
public:
    DesktopPortal()
    {
        qDBusRegisterMetaType<PortalSettings::Settings>();
        qDBusRegisterMetaType<PortalColor>();
        m_bus.registerObject(path, &m_settings, QDBusConnection::ExportScriptableContents);
        m_settings.moveToThread(&m_thread);
        m_thread.start();
    }
    ~DesktopPortal()
    {
        m_thread.quit();
        m_thread.wait();
    }
    DesktopPortal(const DesktopPortal &) = delete;
    DesktopPortal &operator=(const DesktopPortal &) = delete;

    bool come() { return m_bus.registerService(service); }
    void leave()
    {
        m_bus.unregisterService(service);
        forget();
    }

    // What it answers from now on: this and nothing else, or nothing at all.
    void set(const QString &space, const QString &key, const QVariant &value)
    {
        m_settings.set({{space, {{key, value}}}});
    }
    void forget() { m_settings.set({}); }
    // Tells all who listen.
    void announce(const QString &space, const QString &key, const QVariant &value)
    {
        QDBusMessage signal = QDBusMessage::createSignal(
            path, QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
        signal << space << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

    static QVariant color(double red, double green, double blue)
    {
        return QVariant::fromValue(PortalColor{red, green, blue});
    }

private:
    static inline const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    static inline const QString path = QStringLiteral("/org/freedesktop/portal/desktop");

    QThread m_thread;
    PortalSettings m_settings;
    QDBusConnection m_bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
};
