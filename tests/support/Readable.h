// Whether what a window shows can be read.
#pragma once

#include "support/OnScreen.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/SelectableText.h"

#include <QAbstractScrollArea>
#include <QLineEdit>
#include <QScrollBar>

namespace readable {

// The size without which something of the widget is not seen.
inline QSize needed(const QWidget *widget)
{
    if (qobject_cast<const ElidedLabel *>(widget))
        return {0, widget->minimumSizeHint().height()};
    const auto *label = qobject_cast<const QLabel *>(widget);
    // One that only screen readers know.
    if (label && label->text().isEmpty() && label->pixmap().isNull())
        return {};
    if (label)
        return label->wordWrap() ? QSize(0, label->heightForWidth(label->width())) : label->sizeHint();
    if (qobject_cast<const SelectableText *>(widget))
        return {0, widget->heightForWidth(widget->width())};
    // A line edit's own buttons show no words.
    if (qobject_cast<const QAbstractButton *>(widget) && !qobject_cast<QLineEdit *>(widget->parent()))
        return widget->sizeHint();
    return {};
}

inline bool isCutOff(const QWidget *widget)
{
    const QSize size = needed(widget);
    return widget->width() < size.width() || widget->height() < size.height();
}

inline bool canScrollSideways(const QWidget *widget)
{
    for (const QWidget *above = widget; above; above = above->parentWidget()) {
        const auto *area = qobject_cast<const QAbstractScrollArea *>(above);
        if (area && area->horizontalScrollBar()->isVisible())
            return true;
    }
    return false;
}

// Is out of sight to the left or right, where nobody can scroll.
inline bool sticksOut(const QWidget *widget)
{
    const QWidget *const parent = widget->parentWidget();
    return parent && !widget->isWindow() &&
           (widget->x() < 0 || widget->geometry().right() >= parent->width()) && !canScrollSideways(widget);
}

// What is on the widget, or what a screen reader calls it; at most the beginning of it.
inline QString nameOf(const QWidget *widget)
{
    const QString words = onscreen::words(widget);
    return (words.isEmpty() ? widget->accessibleName() : words).left(100);
}

enum class Cut
{
    never,
    withToolTip // what is cut off may be read in a tooltip instead
};

// The first part of the window that cannot be read; empty when all can.
inline QString unreadable(const QWidget &window, Cut allowed)
{
    const QList<QWidget *> all = window.findChildren<QWidget *>();
    for (const QWidget *widget : all) {
        const bool excused = allowed == Cut::withToolTip && !widget->toolTip().isEmpty();
        if (widget->isVisible() && ((isCutOff(widget) && !excused) || sticksOut(widget)))
            return QString::fromLatin1(widget->metaObject()->className()) + u' ' + nameOf(widget);
    }
    return {};
}

} // namespace readable
