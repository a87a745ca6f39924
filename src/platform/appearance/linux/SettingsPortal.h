// Reads the user's wishes from the desktop's settings portal, and hears of their changes. Namespaces, keys
// and values: https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.Settings.html
#pragma once

#include "platform/appearance/AppearanceSource.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QMap>
#include <QString>
#include <QVariantMap>

class SettingsPortal final : public AppearanceSource
{
    Q_OBJECT

public:
    // Asks, and waits a moment for the answer, so that the first window has its colours; one that comes later
    // counts as well.
    explicit SettingsPortal(QObject *parent = nullptr);

    // Settings by namespace and key.
    using Settings = QMap<QString, QVariantMap>;

private Q_SLOTS:
    void change(const QString &space, const QString &key, const QDBusVariant &value);

private:
    void askAtOnce();
    void ask();
    void take(const QDBusMessage &answer);

    Settings m_settings;
};
