#include "ui/widgets/Tint.h"

#include "ui/widgets/Contrast.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QWidget>

#include <array>

namespace {

struct Shades
{
    QRgb onLight;
    QRgb onDark;
};

QColor faded(QColor color, double opacity)
{
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}

// The ground that is hardest to read on: a card, or a badge on one.
QColor hardestGround(const QPalette &palette)
{
    return painted(faded(palette.color(QPalette::WindowText), 0.15), palette.color(QPalette::Window));
}

// Of fields, which stand on cards and never on badges.
QColor edgeColor(const QColor &secondary, const QPalette &palette)
{
    const QColor window = palette.color(QPalette::Window);
    const QColor card = painted(faded(palette.color(QPalette::WindowText), 0.08), window);
    return legible(painted(faded(secondary, 0.4), window), card, graphicContrast);
}

QColor shade(const Shades &shades, const QPalette &palette, double contrast)
{
    return legible(QColor(isDark(palette) ? shades.onDark : shades.onLight), hardestGround(palette),
                   contrast);
}

// The text colour at 60 %, or at as much more as it needs.
QColor secondaryText(const QPalette &palette)
{
    const QColor ground = hardestGround(palette);
    const QColor text = palette.color(QPalette::WindowText);
    for (double opacity = isHighContrast(palette) ? 1 : 0.6; opacity < 1; opacity += 0.05) {
        if (contrastRatio(painted(faded(text, opacity), ground), ground) >= textContrast)
            return faded(text, opacity);
    }
    return text;
}

QColor madeColor(Tint tint, const QPalette &palette)
{
    switch (tint) {
    case Tint::text:
        break;
    case Tint::secondary:
        return secondaryText(palette);
    case Tint::accent:
        return palette.color(QPalette::Highlight);
    case Tint::onAccent:
        return palette.color(QPalette::HighlightedText);
    case Tint::accentInk:
        return legible(palette.color(QPalette::Highlight), hardestGround(palette), graphicContrast);
    case Tint::edge:
        return edgeColor(secondaryText(palette), palette);
    case Tint::grey:
        return shade({0xff8e8e93, 0xff98989d}, palette, graphicContrast);
    case Tint::green:
        return shade({0xff1d7f3a, 0xff5fd07f}, palette, textContrast);
    case Tint::orange:
        return shade({0xffb35a00, 0xffffb155}, palette, textContrast);
    case Tint::red:
        return shade({0xffc4231b, 0xffff7a70}, palette, textContrast);
    case Tint::yellow:
        return shade({0xffe0a400, 0xffffd60a}, palette, graphicContrast);
    }
    return palette.color(QPalette::WindowText);
}

// All tints of the palette that was asked for last: views ask for the same ones all the time.
class Made
{
public:
    const QColor &color(Tint tint, const QPalette &palette)
    {
        const std::array basis{palette.color(QPalette::Window), palette.color(QPalette::WindowText),
                               palette.color(QPalette::Highlight), palette.color(QPalette::HighlightedText),
                               palette.color(QPalette::PlaceholderText)};
        if (basis != m_basis) {
            m_basis = basis;
            for (int i = 0; i < count; ++i)
                m_colors[static_cast<std::size_t>(i)] = madeColor(static_cast<Tint>(i), palette);
        }
        return m_colors[static_cast<std::size_t>(tint)];
    }

private:
    static constexpr int count = static_cast<int>(Tint::yellow) + 1;

    std::array<QColor, 5> m_basis;
    std::array<QColor, count> m_colors;
};

} // namespace

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

bool isHighContrast(const QPalette &palette)
{
    return palette.color(QPalette::PlaceholderText) == palette.color(QPalette::Text);
}

QColor tintColor(Tint tint, const QPalette &palette)
{
    static Made made;
    return made.color(tint, palette);
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
