// How well a colour can be told from another one, and colours changed until they can. The measure is that of
// the Web Content Accessibility Guidelines: https://www.w3.org/TR/WCAG22/#dfn-contrast-ratio. Pure functions;
// colours are opaque unless said otherwise.
#pragma once

#include <QColor>

// What level AA asks for at least.
constexpr double textContrast = 4.5;
constexpr double graphicContrast = 3.0; // large text, symbols, the borders of fields

// From 1, the same brightness, to 21, black and white.
double contrastRatio(const QColor &one, const QColor &other);

// What shows where `color`, which may be translucent, is painted over `ground`.
QColor painted(const QColor &color, const QColor &ground);

// `color` made so much darker or lighter that it has `ratio` to `ground`; as dark or light as can be where
// nothing has.
QColor legible(const QColor &color, const QColor &ground, double ratio);

// Black or white, whichever is told better from `ground`.
QColor inkOn(const QColor &ground);
