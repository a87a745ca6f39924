// The sleep of the machine: kept away while there is work, and noticed when it came all the same.
#pragma once

#include <QObject>
#include <QString>

#include <memory>

class MachineSleep : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // The system's own. Where it cannot be reached, nothing is prevented and nothing noticed.
    static std::unique_ptr<MachineSleep> ofSystem();

    // From now on the machine does not go to sleep by itself. `reason` is shown to a user who asks what keeps
    // it awake; where it is kept awake already, the first one stays. Ends with allow() or with this object.
    virtual void prevent(const QString &reason) = 0;
    virtual void allow() = 0;

Q_SIGNALS:
    // The machine goes to sleep in a moment.
    void begins();
    void ended();
};
