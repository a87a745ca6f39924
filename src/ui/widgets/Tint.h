// The few colours the windows use beyond the palette's own, each fitted to a light or a dark palette and
// legible on every ground that the windows have.
#pragma once

#include <QColor>

class QEvent;
class QPalette;
class QWidget;

enum class Tint
{
    text,
    secondary, // the text colour at 60 %, or all of it where more contrast is wished for
    accent,    // the palette's highlight, to write on
    onAccent,  // what is written on the accent
    accentInk, // the accent where it is a symbol or a ring itself
    edge,      // of fields: the secondary colour at 40 %, or at as much more as it takes to be seen
    grey,      // of symbols alone, as is yellow
    green,
    orange,
    red,
    yellow
};

bool isDark(const QPalette &palette);
// A palette says so by having no fainter colour even for hints in empty fields.
bool isHighContrast(const QPalette &palette);

QColor tintColor(Tint tint, const QPalette &palette);
// The same colour at `opacity`, from 0 to 1.
QColor tintColor(Tint tint, const QPalette &palette, double opacity);

// Gives a widget's text the tint, fitted to the palette of what the widget stands in.
void tintText(QWidget &widget, Tint tint);
// Whether that has to be done anew after an event of the widget's.
bool concernsTint(const QEvent &event);
