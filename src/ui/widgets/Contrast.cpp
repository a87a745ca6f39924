#include "ui/widgets/Contrast.h"

#include <algorithm>
#include <cmath>

namespace {

double luminance(const QColor &color)
{
    const auto linear = [](float part) {
        return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace

double contrastRatio(const QColor &one, const QColor &other)
{
    constexpr double flare = 0.05; // of the room, reflected by a screen
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + flare) / (darker + flare);
}

QColor painted(const QColor &color, const QColor &ground)
{
    const float opacity = color.alphaF();
    const auto mixed = [opacity](float above, float below) {
        return above * opacity + below * (1 - opacity);
    };
    return QColor::fromRgbF(mixed(color.redF(), ground.redF()), mixed(color.greenF(), ground.greenF()),
                            mixed(color.blueF(), ground.blueF()));
}

QColor legible(const QColor &color, const QColor &ground, double ratio)
{
    constexpr int steps = 32;
    const QColor end = inkOn(ground);
    QColor result = color;
    for (int step = 1; step <= steps && contrastRatio(result, ground) < ratio; ++step) {
        QColor more = end;
        more.setAlphaF(static_cast<float>(step) / steps);
        result = painted(more, color);
    }
    return result;
}

QColor inkOn(const QColor &ground)
{
    const QColor black = Qt::black;
    const QColor white = Qt::white;
    return contrastRatio(black, ground) > contrastRatio(white, ground) ? black : white;
}
