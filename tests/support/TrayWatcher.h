// The service of a desktop that has a tray, for a test to put on a session bus. What it tells may be read on
// any thread: it has to answer on another than the program's main one, which waits for it.
#pragma once

#include <QMutex>
#include <QObject>
#include <QStringList>

class TrayWatcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    static inline const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
    static inline const QString path = QStringLiteral("/StatusNotifierWatcher");

    // Whether something shows the items.
    bool hasHost() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_host;
    }
    void setHost(bool host)
    {
        const QMutexLocker lock(&m_mutex);
        m_host = host;
    }
    // The bus names of the items that came, oldest first.
    QStringList items() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_items;
    }

public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString &item)
    {
        const QMutexLocker lock(&m_mutex);
        m_items.append(item);
    }

private:
    mutable QMutex m_mutex;
    bool m_host = true;
    QStringList m_items;
};
