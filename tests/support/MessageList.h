// The messages of a chat as a screen reader finds them, and their painted buttons as the mouse does.
#pragma once

#include "support/OnScreen.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QStringList>

namespace messages {

// Null while no chat shows.
inline QAbstractScrollArea *list(const QWidget *root)
{
    return onscreen::find<QAbstractScrollArea>(root, QStringLiteral("Messages"));
}

inline QList<QAccessibleInterface *> all(const QWidget *root)
{
    QList<QAccessibleInterface *> messages;
    QAccessibleInterface *const parent = QAccessible::queryAccessibleInterface(list(root));
    for (int index = 0; parent && index < parent->childCount(); ++index)
        messages.append(parent->child(index));
    return messages;
}

// What is said of each, for example "You: Hello".
inline QStringList texts(const QWidget *root)
{
    QStringList texts;
    for (const QAccessibleInterface *message : all(root))
        texts.append(message->text(QAccessible::Name));
    return texts;
}

// Empty while there is no message.
inline QString lastText(const QWidget *root)
{
    const QStringList all = texts(root);
    return all.isEmpty() ? QString() : all.last();
}

// What stands beside the last message: what it waits for, or how fast it came.
inline QString status(const QWidget *root)
{
    const QList<QAccessibleInterface *> messages = all(root);
    return messages.isEmpty() ? QString() : messages.last()->text(QAccessible::Description);
}

// The last message's button of that name that can be seen; null when there is none.
inline QAccessibleInterface *button(const QWidget *root, const QString &name)
{
    const QList<QAccessibleInterface *> messages = all(root);
    if (messages.isEmpty())
        return nullptr;
    list(root)->viewport()->grab(); // which lays out what is to be seen
    for (int index = messages.last()->childCount() - 1; index >= 0; --index) {
        QAccessibleInterface *const child = messages.last()->child(index);
        if (child->text(QAccessible::Name) == name && !child->state().offscreen)
            return child;
    }
    return nullptr;
}

inline bool offers(const QWidget *root, const QString &name)
{
    return button(root, name) != nullptr;
}

// Ends the test when the last message has no such button to click.
inline void click(const QWidget *root, const QString &name)
{
    const QAccessibleInterface *const found = button(root, name);
    if (!found)
        qFatal("The last message has no button \"%s\" to click", qUtf8Printable(name));
    QWidget *const viewport = list(root)->viewport();
    QTest::mouseClick(viewport, Qt::LeftButton, {}, viewport->mapFromGlobal(found->rect().center()));
}

} // namespace messages
