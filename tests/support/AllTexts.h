// All that a window shows or tells a screen reader, wherever it stands.
#pragma once

#include "support/OnScreen.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>

namespace alltexts {

inline QStringList ofActions(const QList<QAction *> &actions)
{
    QStringList texts;
    for (const QAction *action : actions) {
        texts << action->text();
        if (action->menu())
            texts << ofActions(action->menu()->actions());
    }
    return texts;
}

inline QStringList ofItems(const QAbstractItemModel *model)
{
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row) {
        for (const int role : {Qt::DisplayRole, Qt::ToolTipRole, Qt::AccessibleTextRole})
            texts << model->index(row, 0).data(role).toString();
    }
    return texts;
}

// What screen readers hear of the parts of a widget that are painted rather than widgets of their own.
inline QStringList ofPainted(QAccessibleInterface *parent)
{
    QStringList texts;
    for (int i = 0; parent && i < parent->childCount(); ++i) {
        QAccessibleInterface *const part = parent->child(i);
        if (part && !part->object())
            texts << part->text(QAccessible::Name) << part->text(QAccessible::Description) << ofPainted(part);
    }
    return texts;
}

// The words in text fields apart.
inline QStringList ofWidget(QWidget *widget)
{
    QStringList texts{widget->toolTip(), widget->accessibleName(), widget->accessibleDescription(),
                      widget->property("placeholderText").toString()};
    if (widget->isWindow())
        texts << widget->windowTitle();
    if (qobject_cast<QLabel *>(widget) || qobject_cast<QAbstractButton *>(widget))
        texts << onscreen::words(widget);
    if (const auto *menuBar = qobject_cast<QMenuBar *>(widget))
        texts << ofActions(menuBar->actions());
    if (const auto *box = qobject_cast<QComboBox *>(widget))
        texts << ofItems(box->model());
    if (const auto *list = qobject_cast<QAbstractItemView *>(widget))
        texts << ofItems(list->model());
    else
        texts << ofPainted(QAccessible::queryAccessibleInterface(widget));
    return texts;
}

inline QStringList ofWindow(QWidget &window)
{
    QStringList texts = ofWidget(&window);
    const QList<QWidget *> all = window.findChildren<QWidget *>();
    for (QWidget *widget : all) {
        if (widget->isVisible())
            texts << ofWidget(widget);
    }
    return texts;
}

} // namespace alltexts
