#include "ui/widgets/Tint.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QWidget>

namespace {

struct Shades
{
    QRgb onLight;
    QRgb onDark;
};

// Legible as text on either ground.
QColor shade(const Shades &shades, const QPalette &palette)
{
    return QColor(isDark(palette) ? shades.onDark : shades.onLight);
}

QColor faded(QColor color, double opacity)
{
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}

} // namespace

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

QColor tintColor(Tint tint, const QPalette &palette)
{
    switch (tint) {
    case Tint::text:
        break;
    case Tint::secondary:
        return faded(palette.color(QPalette::WindowText), 0.6);
    case Tint::accent:
        return palette.color(QPalette::Highlight);
    case Tint::onAccent:
        return palette.color(QPalette::HighlightedText);
    case Tint::grey:
        return shade({0xff8e8e93, 0xff98989d}, palette);
    case Tint::green:
        return shade({0xff1d7f3a, 0xff5fd07f}, palette);
    case Tint::orange:
        return shade({0xffb35a00, 0xffffb155}, palette);
    case Tint::red:
        return shade({0xffc4231b, 0xffff7a70}, palette);
    case Tint::yellow:
        return shade({0xffe0a400, 0xffffd60a}, palette);
    }
    return palette.color(QPalette::WindowText);
}

QColor tintColor(Tint tint, const QPalette &palette, double opacity)
{
    return faded(tintColor(tint, palette), opacity);
}

void tintText(QWidget &widget, Tint tint)
{
    // Not from the widget's own palette, which this changes.
    const QWidget *const ground = widget.parentWidget();
    const QColor color = tintColor(tint, ground ? ground->palette() : QApplication::palette());
    QPalette tinted = widget.palette();
    if (tinted.color(QPalette::WindowText) == color && tinted.color(QPalette::Text) == color)
        return;
    tinted = {};
    tinted.setColor(QPalette::WindowText, color);
    tinted.setColor(QPalette::Text, color);
    widget.setPalette(tinted);
}

bool concernsTint(const QEvent &event)
{
    return event.type() == QEvent::PaletteChange || event.type() == QEvent::ParentChange;
}
