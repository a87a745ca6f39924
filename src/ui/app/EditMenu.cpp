#include "ui/app/EditMenu.h"

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace {

bool isWritable(const QWidget *widget)
{
    const QVariant readOnly = widget->property("readOnly");
    return readOnly.isValid() && !readOnly.toBool();
}

bool offers(const QWidget *widget, const QByteArray &method)
{
    return widget->metaObject()->indexOfMethod((method + "()").constData()) >= 0;
}

} // namespace

EditMenu::EditMenu(QWidget *parent) : QMenu(tr("&Edit"), parent)
{
    add(tr("&Undo"), QKeySequence::Undo, "undo", true);
    add(tr("&Redo"), QKeySequence::Redo, "redo", true);
    addSeparator();
    add(tr("Cu&t"), QKeySequence::Cut, "cut", true);
    add(tr("&Copy"), QKeySequence::Copy, "copy", false);
    add(tr("&Paste"), QKeySequence::Paste, "paste", true);
    addSeparator();
    add(tr("Select &All"), QKeySequence::SelectAll, "selectAll", false);
    connect(this, &QMenu::aboutToShow, this, &EditMenu::enableFitting);
}

void EditMenu::add(const QString &text, const QKeySequence &keys, const char *method, bool edits)
{
    QAction *action = addAction(text);
    action->setShortcut(keys);
    action->setData(QByteArray(method));
    action->setProperty("edits", edits);
    // The focused widget takes the keys itself; the action is for the mouse.
    connect(action, &QAction::triggered, this, [method] {
        QWidget *focused = QApplication::focusWidget();
        if (focused && offers(focused, method))
            QMetaObject::invokeMethod(focused, method);
    });
}

void EditMenu::enableFitting()
{
    const QWidget *focused = QApplication::focusWidget();
    const QList<QAction *> all = actions();
    for (QAction *action : all) {
        // Neither a separator nor what others have added.
        if (action->data().isNull())
            continue;
        const bool edits = action->property("edits").toBool();
        action->setEnabled(focused && offers(focused, action->data().toByteArray()) &&
                           (!edits || isWritable(focused)));
    }
}
