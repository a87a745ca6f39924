// The service of a desktop's settings portal, for a test to put on a session bus. It has to answer on another
// thread than the program's main one, which waits for it.
#pragma once

#include <QMap>
#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

class PortalSettings : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    using Settings = QMap<QString, QVariantMap>;

    void set(const Settings &settings)
    {
        const QMutexLocker lock(&m_mutex);
        m_settings = settings;
    }

public Q_SLOTS:
    // Everything, whatever namespaces are asked for.
    Q_SCRIPTABLE QMap<QString, QVariantMap> ReadAll(const QStringList &)
    {
        const QMutexLocker lock(&m_mutex);
        return m_settings;
    }

private:
    QMutex m_mutex;
    Settings m_settings;
};
