// What a desktop and its system offer a program on their buses: notifications, the launcher and the login
// manager, for a test to put on the bus and to look at.
#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QStringList>
#include <QTest>
#include <QVariantMap>

#include <algorithm>

#include <poll.h>
#include <unistd.h>

class NotificationServer : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Shown
    {
        uint id;
        QString title;
        QString body;
        QString entry;
    };

    QStringList capabilities;
    QList<Shown> shown; // in the order they came; one that replaces another has its id
    QList<uint> closed;

    // A click on what came last.
    void click(const QString &token)
    {
        Q_EMIT ActivationToken(shown.constLast().id, token);
        Q_EMIT ActionInvoked(shown.constLast().id, QStringLiteral("default"));
    }

public Q_SLOTS:
    Q_SCRIPTABLE QStringList GetCapabilities() const { return capabilities; }
    Q_SCRIPTABLE uint Notify(const QString & /*program*/, uint replaced, const QString & /*icon*/,
                             const QString &title, const QString &body, const QStringList & /*actions*/,
                             const QVariantMap &hints, int /*time*/)
    {
        const uint id = replaced > 0 ? replaced : ++m_last;
        shown.append({id, title, body, hints.value(QStringLiteral("desktop-entry")).toString()});
        return id;
    }
    Q_SCRIPTABLE void CloseNotification(uint id)
    {
        // What an earlier test has closed may come late.
        const auto isThis = [id](const Shown &one) { return one.id == id; };
        if (std::any_of(shown.cbegin(), shown.cend(), isThis))
            closed.append(id);
    }

Q_SIGNALS:
    Q_SCRIPTABLE void ActivationToken(uint id, const QString &token);
    Q_SCRIPTABLE void ActionInvoked(uint id, const QString &action);

private:
    static inline uint m_last = 0; // no two servers give the same number
};

class LoginManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    ~LoginManager() override { close(m_held); }

    QStringList asked; // what was to be prevented

    // Whether whoever asked last still keeps what it was given.
    bool isHeld() const
    {
        pollfd end{m_held, POLLIN, 0};
        return m_held >= 0 && poll(&end, 1, 0) == 0;
    }

public Q_SLOTS:
    Q_SCRIPTABLE QDBusUnixFileDescriptor Inhibit(const QString &what, const QString & /*who*/,
                                                 const QString & /*why*/, const QString &mode)
    {
        asked.append(what + QLatin1Char(' ') + mode);
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0)
            qFatal("no pipe");
        close(std::exchange(m_held, ends[0]));
        const QDBusUnixFileDescriptor given(ends[1]);
        close(ends[1]);
        return given;
    }

Q_SIGNALS:
    Q_SCRIPTABLE void PrepareForSleep(bool begins);

private:
    int m_held = -1;
};

// Grants one wish at a time, and is the object that stands for it.
class SleepPortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Inhibit")

public:
    static inline const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
    uint held = 0; // the flags of what is kept away

public Q_SLOTS:
    Q_SCRIPTABLE QDBusObjectPath Inhibit(const QString & /*window*/, uint flags,
                                         const QVariantMap & /*options*/)
    {
        held = flags;
        return QDBusObjectPath(path + QStringLiteral("/request"));
    }
};

class SleepRequest : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    explicit SleepRequest(SleepPortal &portal) : m_portal(portal) {}

public Q_SLOTS:
    Q_SCRIPTABLE void Close() { m_portal.held = 0; }

private:
    SleepPortal &m_portal;
};

class DesktopServices : public QObject
{
    Q_OBJECT

public:
    DesktopServices()
    {
        const auto offer = [this](QObject *object, const QString &path, const QString &name) {
            return m_bus.registerObject(path, object, QDBusConnection::ExportScriptableContents) &&
                   m_bus.registerService(name);
        };
        const bool offered =
            offer(&notifications, QStringLiteral("/org/freedesktop/Notifications"),
                  QStringLiteral("org.freedesktop.Notifications")) &&
            offer(&login, QStringLiteral("/org/freedesktop/login1"),
                  QStringLiteral("org.freedesktop.login1")) &&
            m_bus.registerObject(SleepPortal::path + QStringLiteral("/request"), &m_request,
                                 QDBusConnection::ExportScriptableContents) &&
            offer(&portal, SleepPortal::path, QStringLiteral("org.freedesktop.portal.Desktop"));
        const QString entry = QStringLiteral("com.canonical.Unity.LauncherEntry");
        if (!offered ||
            !m_bus.connect({}, {}, entry, QStringLiteral("Update"), this, SLOT(update(QString, QVariantMap))))
            qFatal("The services cannot be offered");
    }

    NotificationServer notifications;
    LoginManager login;
    SleepPortal portal;
    QList<QVariantMap> launcher; // all that its icon was told

private Q_SLOTS:
    void update(const QString & /*entry*/, const QVariantMap &properties) { launcher.append(properties); }

private:
    SleepRequest m_request{portal};
    QDBusConnection m_bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("services"));
};
