// The sizes and weights in which text appears, as factors of the application's font.
#pragma once

#include <QFont>

enum class TextStyle
{
    largeTitle,
    title,
    title2,
    title3,
    headline,
    body,
    callout,
    caption
};

// `scale` is a factor of the size that the style has.
QFont styledFont(TextStyle style, double scale = 1);
// The desktop's fixed-width font in the size of `style`.
QFont monospacedFont(TextStyle style, double scale = 1);
