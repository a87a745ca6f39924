// The palette that the windows have: the desktop's own as far as it fits what the user wishes for, else one
// of ours.
#pragma once

#include "platform/appearance/AppearanceSource.h"

#include <QPalette>

// Whether the palette has to be the theme's: a desktop with a style of its own paints parts of the windows in
// its own colours, whatever the palette says.
enum class ThemeRole
{
    proposes,
    decides
};

// `theme` is the palette of the desktop's theme, which may know nothing of the wishes. Whatever it says,
// hints in empty fields, links, and words on the colour of accents can be read in the result.
QPalette paletteFor(const AppearanceWishes &wishes, const QPalette &theme,
                    ThemeRole role = ThemeRole::proposes);
