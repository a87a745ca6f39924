#include "platform/launcher/LauncherProgress.h"

#import <AppKit/AppKit.h>

namespace {

// A bar across the foot of the icon in the Dock.
class DockTile final : public LauncherProgress
{
public:
    ~DockTile() override { show(std::nullopt); }

    void show(std::optional<double> fraction) override
    {
        NSDockTile *tile = NSApp.dockTile;
        if (fraction && !m_bar)
            addBar(tile);
        m_bar.doubleValue = fraction.value_or(0);
        if (!fraction) {
            tile.contentView = nil;
            m_bar = nil;
        }
        [tile display];
    }

private:
    void addBar(NSDockTile *tile)
    {
        const NSRect whole = NSMakeRect(0, 0, tile.size.width, tile.size.height);
        NSImageView *icon = [[NSImageView alloc] initWithFrame:whole];
        icon.image = NSApp.applicationIconImage;
        m_bar = [[NSProgressIndicator alloc] initWithFrame:NSMakeRect(0, 0, whole.size.width, 16)];
        m_bar.style = NSProgressIndicatorStyleBar;
        m_bar.indeterminate = NO;
        m_bar.minValue = 0;
        m_bar.maxValue = 1;
        [icon addSubview:m_bar];
        tile.contentView = icon;
    }

    NSProgressIndicator *m_bar = nil;
};

} // namespace

std::unique_ptr<LauncherProgress> LauncherProgress::ofDesktop()
{
    return std::make_unique<DockTile>();
}
