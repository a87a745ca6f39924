// The icons of the program by their symbol names, for example "trash": outlines from the resources, drawn in
// a tint of the current palette and sharp in every size and at every scale.
#pragma once

#include "ui/widgets/Tint.h"

#include <QIcon>
#include <QPixmap>
#include <QString>

class SymbolIcon
{
public:
    // For a button or an item: follows the application's palette, paler while disabled and in the colour of
    // selected text while selected.
    static QIcon icon(const QString &symbol, Tint tint = Tint::text);

    // `size` in device-independent pixels.
    static QPixmap pixmap(const QString &symbol, int size, const QColor &color, double devicePixelRatio);
};
