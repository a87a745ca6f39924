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

QFont styledFont(TextStyle style);
// The desktop's fixed-width font in the size of `style`.
QFont monospacedFont(TextStyle style);
