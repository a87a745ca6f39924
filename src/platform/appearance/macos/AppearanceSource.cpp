#include "platform/appearance/AppearanceSource.h"

// Qt's own platform theme follows the system's appearance there.
std::unique_ptr<AppearanceSource> AppearanceSource::ofDesktop()
{
    return std::make_unique<AppearanceSource>();
}
