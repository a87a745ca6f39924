// Asks the user's session, by the desktop portal (org.freedesktop.portal.Inhibit), not to put the machine to
// sleep: some desktops do that in the user's name, whose own locks the login manager may overlook.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

class SessionInhibition : public QObject
{
    Q_OBJECT

public:
    explicit SessionInhibition(QObject *parent = nullptr);
    ~SessionInhibition() override;

    // As those of MachineSleep.
    void prevent(const QString &reason);
    void allow();

private:
    void close(const QString &request);

    QDBusConnection m_bus;
    bool m_isWanted = false;
    bool m_isAsking = false;
    QString m_request; // the object that stands for what was granted; empty: nothing is
};
