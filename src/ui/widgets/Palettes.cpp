#include "ui/widgets/Palettes.h"

#include "ui/widgets/Contrast.h"
#include "ui/widgets/Tint.h"

namespace {

using Scheme = AppearanceWishes::Scheme;

struct Colors
{
    QRgb window;
    QRgb base;
    QRgb alternateBase;
    QRgb button;
    QRgb text;
    QRgb disabledText;
    QRgb toolTip;
    QRgb link;
    QRgb highlight;
};

constexpr Colors light{0xffefefef, 0xffffffff, 0xfff7f7f7, 0xffefefef, 0xff000000,
                       0xff8e8e8e, 0xffffffe6, 0xff0b57d0, 0xff2a78b0};
constexpr Colors dark{0xff242424, 0xff1c1c1c, 0xff2a2a2a, 0xff3a3a3a, 0xfff2f2f2,
                      0xff8a8a8a, 0xff3a3a3a, 0xff7ab8f5, 0xff2f7fb8};
constexpr Colors lightContrast{0xffffffff, 0xffffffff, 0xffffffff, 0xffffffff, 0xff000000,
                               0xff595959, 0xffffffff, 0xff0000c8, 0xff00457a};
constexpr Colors darkContrast{0xff000000, 0xff000000, 0xff000000, 0xff1a1a1a, 0xffffffff,
                              0xffa6a6a6, 0xff000000, 0xff8ccbff, 0xff7ab8f5};

QPalette paletteOf(const Colors &colors)
{
    // The shades of edges come from the button's colour.
    QPalette palette(QColor(colors.button), QColor(colors.window));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::BrightText})
        palette.setColor(role, QColor(colors.text));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(colors.disabledText));
    palette.setColor(QPalette::Base, QColor(colors.base));
    palette.setColor(QPalette::AlternateBase, QColor(colors.alternateBase));
    palette.setColor(QPalette::ToolTipBase, QColor(colors.toolTip));
    palette.setColor(QPalette::Link, QColor(colors.link));
    palette.setColor(QPalette::LinkVisited, QColor(colors.link));
    palette.setColor(QPalette::Highlight, QColor(colors.highlight));
    palette.setColor(QPalette::HighlightedText, inkOn(QColor(colors.highlight)));
    return palette;
}

QPalette ownPalette(bool isToBeDark, bool moreContrast)
{
    if (moreContrast)
        return paletteOf(isToBeDark ? darkContrast : lightContrast);
    return paletteOf(isToBeDark ? dark : light);
}

void setAccent(QPalette &palette, const QColor &accent)
{
    const QColor ink =
        contrastRatio(accent, Qt::white) >= graphicContrast ? QColor(Qt::white) : QColor(Qt::black);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, ink);
}

void setChanged(QPalette &palette, QPalette::ColorRole role, const QColor &color)
{
    if (palette.color(role) != color)
        palette.setColor(role, color);
}

// Some desktops with dark colours name none for hints, and Qt then takes the one for light colours.
QColor hintColor(const QPalette &palette, bool moreContrast)
{
    const QColor text = palette.color(QPalette::Text);
    if (moreContrast)
        return text;
    QColor half = text;
    half.setAlphaF(0.5F);
    const QColor ground = palette.color(QPalette::Base);
    return legible(painted(half, ground), ground, textContrast);
}

// Some themes pale what stands in windows in the background until it can hardly be read.
void keepBackgroundLegible(QPalette &palette)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        const QColor color = palette.color(QPalette::Active, role);
        if (palette.color(QPalette::Inactive, role) != color)
            palette.setColor(QPalette::Inactive, role, color);
    }
    const QColor ink = palette.color(QPalette::Inactive, QPalette::HighlightedText);
    const QColor readable =
        legible(ink, palette.color(QPalette::Inactive, QPalette::Highlight), textContrast);
    if (ink != readable)
        palette.setColor(QPalette::Inactive, QPalette::HighlightedText, readable);
}

void keepLegible(QPalette &palette, bool moreContrast)
{
    setChanged(palette, QPalette::PlaceholderText, hintColor(palette, moreContrast));
    setChanged(palette, QPalette::Link,
               legible(palette.color(QPalette::Link), palette.color(QPalette::Base), textContrast));
    setChanged(
        palette, QPalette::Highlight,
        legible(palette.color(QPalette::Highlight), palette.color(QPalette::HighlightedText), textContrast));
    keepBackgroundLegible(palette);
}

} // namespace

QPalette paletteFor(const AppearanceWishes &wishes, const QPalette &theme, ThemeRole role)
{
    const bool isToBeDark = wishes.scheme == Scheme::none ? isDark(theme) : wishes.scheme == Scheme::dark;
    const bool doesNotFit = isToBeDark != isDark(theme) || (wishes.moreContrast && !isHighContrast(theme));
    QPalette palette = theme;
    if (doesNotFit && role == ThemeRole::proposes)
        palette = ownPalette(isToBeDark, wishes.moreContrast);
    if (wishes.accent)
        setAccent(palette, QColor(*wishes.accent));
    keepLegible(palette, wishes.moreContrast);
    return palette;
}
