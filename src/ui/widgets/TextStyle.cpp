#include "ui/widgets/TextStyle.h"

#include <QApplication>
#include <QFontDatabase>

namespace {

double factor(TextStyle style)
{
    switch (style) {
    case TextStyle::largeTitle:
        return 2.0;
    case TextStyle::title:
        return 1.7;
    case TextStyle::title2:
        return 1.3;
    case TextStyle::title3:
        return 1.15;
    case TextStyle::headline:
    case TextStyle::body:
        break;
    case TextStyle::callout:
        return 0.92;
    case TextStyle::caption:
        return 0.8;
    }
    return 1.0;
}

// Desktops give the application's font in points or in pixels.
void setScaledSize(QFont &font, double by)
{
    const QFont base = QApplication::font();
    if (base.pointSizeF() > 0)
        font.setPointSizeF(base.pointSizeF() * by);
    else
        font.setPixelSize(qRound(base.pixelSize() * by));
}

} // namespace

QFont styledFont(TextStyle style, double scale)
{
    QFont font = QApplication::font();
    setScaledSize(font, factor(style) * scale);
    if (style == TextStyle::title2 || style == TextStyle::headline)
        font.setBold(true);
    return font;
}

QFont monospacedFont(TextStyle style, double scale)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    setScaledSize(font, factor(style) * scale);
    return font;
}
