// The few colours the windows use beyond the palette's own, each fitted to a light or a dark palette.
#pragma once

#include <QColor>

class QEvent;
class QPalette;
class QWidget;

enum class Tint
{
    text,
    secondary, // the text colour at 60 %
    accent,    // the palette's highlight
    onAccent,  // what is written on the accent
    grey,
    green,
    orange,
    red,
    yellow
};

bool isDark(const QPalette &palette);

QColor tintColor(Tint tint, const QPalette &palette);
// The same colour at `opacity`, from 0 to 1.
QColor tintColor(Tint tint, const QPalette &palette, double opacity);

// Gives a widget's text the tint, fitted to the palette of what the widget stands in.
void tintText(QWidget &widget, Tint tint);
// Whether that has to be done anew after an event of the widget's.
bool concernsTint(const QEvent &event);
