#include "ui/widgets/PlaceholderColor.h"

#include "ui/widgets/AppearanceWatch.h"

#include <QApplication>
#include <QPalette>

namespace {

void apply()
{
    QColor color = QApplication::palette().color(QPalette::Text);
    color.setAlpha(128);
    if (QApplication::palette().color(QPalette::PlaceholderText) == color)
        return;
    // All other colours remain the desktop's.
    QPalette palette;
    palette.setResolveMask(0);
    palette.setColor(QPalette::PlaceholderText, color);
    QApplication::setPalette(palette);
}

} // namespace

void keepPlaceholdersLegible()
{
    AppearanceWatch &watch = AppearanceWatch::shared();
    QObject::connect(&watch, &AppearanceWatch::paletteChanged, &watch, apply);
    apply();
}
