// Whether the desktop has a place for tray items now. Some never have, and some get one after the program's
// start.
#pragma once

#include <QObject>

#include <memory>

class TrayHost : public QObject
{
    Q_OBJECT

public:
    explicit TrayHost(QObject *parent = nullptr);

    // The desktop's own. Where it has to be asked for, the answer comes in a later turn of the event loop.
    static std::unique_ptr<TrayHost> ofDesktop();

    // To be called before an item is shown: where a desktop has places of several kinds, all items go to one
    // of the kind that the first one finds.
    virtual void settle() {}

    bool isPresent() const { return m_present; }
    void setPresent(bool present);

Q_SIGNALS:
    void presentChanged();

private:
    bool m_present = false;
};
