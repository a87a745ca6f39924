#include "ui/widgets/ScrollAreaAccessible.h"

#include <QAbstractScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace {

// Qt asks once for each class of the object, the most derived one first.
QAccessibleInterface *make(const QString &className, QObject *object)
{
    if (className != "QScrollArea"_L1 && className != "QAbstractScrollArea"_L1)
        return nullptr;
    auto *const area = qobject_cast<QAbstractScrollArea *>(object);
    return area ? new ScrollAreaAccessible(area) : nullptr;
}

} // namespace

ScrollAreaAccessible::ScrollAreaAccessible(QAbstractScrollArea *area)
    : QAccessibleWidget(area, QAccessible::Client)
{
}

void ScrollAreaAccessible::install()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
}

QWidgetList ScrollAreaAccessible::parts() const
{
    const auto *const area = static_cast<QAbstractScrollArea *>(object());
    QWidgetList parts{area->viewport()};
    // The bars stand in containers, which are the scroll area's children.
    for (const QScrollBar *bar : {area->horizontalScrollBar(), area->verticalScrollBar()}) {
        if (bar->isVisible())
            parts.append(bar->parentWidget());
    }
    if (QWidget *const corner = area->cornerWidget(); corner && corner->isVisible())
        parts.append(corner);
    return parts;
}

int ScrollAreaAccessible::childCount() const
{
    return static_cast<int>(parts().size());
}

QAccessibleInterface *ScrollAreaAccessible::child(int index) const
{
    return QAccessible::queryAccessibleInterface(parts().value(index));
}

QAccessibleInterface *ScrollAreaAccessible::childAt(int x, int y) const
{
    if (!widget()->isVisible())
        return nullptr;
    const QPoint point = widget()->mapFromGlobal(QPoint(x, y));
    const QWidgetList all = parts();
    for (QWidget *part : all) {
        if (part->geometry().contains(point))
            return QAccessible::queryAccessibleInterface(part);
    }
    return nullptr;
}

int ScrollAreaAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    return child ? static_cast<int>(parts().indexOf(child->object())) : -1;
}
