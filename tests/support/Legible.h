// How well what a window shows can be told from its ground, judged by the pixels.
#pragma once

#include "support/OnScreen.h"
#include "support/Readable.h"
#include "ui/widgets/Contrast.h"
#include "ui/widgets/Graphic.h"

#include <QAbstractSpinBox>
#include <QAccessible>
#include <QFontInfo>
#include <QHash>
#include <QImage>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace legibility {

using namespace Qt::StringLiterals;

// Something on the screen, and how well it has to be told from its ground.
struct Part
{
    QString name;
    QRect rect; // in the window
    double contrast = textContrast;
    QMargins frame = {3, 3, 3, 3}; // the border of a button tells nothing of its words
};

inline double neededBy(const QWidget *widget)
{
    // Large text: 18 points, or 14 in bold, at 96 pixels an inch.
    const QFontInfo font(widget->font());
    const bool isLarge = font.pixelSize() >= 24 || (font.bold() && font.pixelSize() >= 19);
    return isLarge || onscreen::words(widget).isEmpty() ? graphicContrast : textContrast;
}

inline bool isWritten(const QWidget *widget)
{
    const bool hasWords = !onscreen::words(widget).isEmpty() || qobject_cast<const Graphic *>(widget) ||
                          qobject_cast<const QAbstractButton *>(widget);
    return widget->isVisible() && widget->isEnabled() && hasWords;
}

// What is painted rather than made of widgets.
inline void addPainted(QList<Part> &parts, QAccessibleInterface *parent, const QWidget &window)
{
    for (int i = 0; parent && i < parent->childCount(); ++i) {
        QAccessibleInterface *const part = parent->child(i);
        if (!part || part->object() || part->state().disabled)
            continue;
        const QRect place = part->rect();
        const QString name = part->text(QAccessible::Name).left(40);
        if (!name.isEmpty() && !part->state().offscreen)
            parts.append({name, QRect(window.mapFromGlobal(place.topLeft()), place.size())});
        addPainted(parts, part, window);
    }
}

inline bool isField(const QWidget *widget)
{
    const auto *const text = qobject_cast<const QPlainTextEdit *>(widget);
    const auto *const line = qobject_cast<const QLineEdit *>(widget);
    return widget->isVisible() && widget->isEnabled() &&
           ((text && !text->isReadOnly()) || (line && line->hasFrame()) ||
            qobject_cast<const QAbstractSpinBox *>(widget));
}

inline QList<Part> partsOf(const QWidget &window)
{
    QList<Part> parts;
    const QList<QWidget *> all = window.findChildren<QWidget *>();
    for (QWidget *widget : all) {
        if (isField(widget)) {
            constexpr int reach = 3;
            const QPoint edge = widget->mapTo(&window, QPoint(0, widget->height() / 2));
            const QRect across(edge - QPoint(reach, reach), QSize(2 * reach, 2 * reach));
            parts.append({u"edge of "_s + readable::nameOf(widget), across, graphicContrast, {}});
        }
        if (!isWritten(widget)) {
            if (widget->isVisible())
                addPainted(parts, QAccessible::queryAccessibleInterface(widget), window);
            continue;
        }
        // Half of a line may have no ink at all.
        if (widget->visibleRegion().boundingRect() != widget->rect())
            continue;
        Part part{readable::nameOf(widget), QRect(widget->mapTo(&window, QPoint()), widget->size()),
                  neededBy(widget)};
        if (qobject_cast<const Graphic *>(widget))
            part.frame = {-2, -2, -2, -2}; // its ground lies around it
        parts.append(part);
    }
    return parts;
}

// The greatest contrast of a colour that is there more than by chance to the one that is there most.
inline double contrastIn(const QImage &picture)
{
    constexpr int chance = 5; // pixels
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    QRgb ground = 0;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        if (*count > counts.value(ground))
            ground = count.key();
    }
    double best = 1;
    for (auto count = counts.cbegin(); count != counts.cend(); ++count) {
        if (*count > chance)
            best = qMax(best, contrastRatio(QColor(count.key()), QColor(ground)));
    }
    return best;
}

} // namespace legibility
