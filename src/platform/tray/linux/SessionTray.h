// The tray of a Linux session: a StatusNotifierItem host on the session bus, or else a tray of the older kind
// on the X11 screen.
#pragma once

#include "platform/tray/TrayHost.h"
#include "platform/tray/linux/XEmbedTray.h"

#include <QTimer>

class SessionTray final : public TrayHost
{
    Q_OBJECT

public:
    explicit SessionTray(QObject *parent = nullptr);

    // Qt puts its items on the session bus if there is a host when the first one is made, and into the older
    // tray otherwise; whatever comes later changes nothing.
    void settle() override;

private Q_SLOTS:
    void ask();

private:
    enum class Kind
    {
        open,
        onTheBus,
        onTheScreen
    };

    void watchBus();
    void update();

    Kind m_kind = Kind::open;
    bool m_hasHost = false;
    XEmbedTray m_older;
    // A panel that has trays of both kinds brings them one after the other.
    QTimer m_patience;
    bool m_isPatient = true;
};
