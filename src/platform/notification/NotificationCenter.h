// The desktop's notifications: short texts that reach the user wherever on the screen they are.
#pragma once

#include "platform/instance/Activation.h"

#include <QObject>
#include <QString>

#include <memory>

struct Notification
{
    QString key; // what it is about
    QString title;
    QString body; // plain text

    bool operator==(const Notification &) const = default;
};

class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The desktop's own; silent where it has none. What it still shows goes with it.
    static std::unique_ptr<NotificationCenter> ofDesktop();

    // Replaces the one with the same key. Returns at once.
    virtual void show(const Notification &notification) = 0;
    // Takes back all that are shown.
    virtual void withdrawAll() = 0;

Q_SIGNALS:
    // The user has clicked the notification with that key. `activation` may be empty.
    void activated(const QString &key, const Activation &activation);
};
