#include "platform/tray/TrayHost.h"

std::unique_ptr<TrayHost> TrayHost::ofDesktop()
{
    auto host = std::make_unique<TrayHost>();
    host->setPresent(true); // the menu bar is always there
    return host;
}
