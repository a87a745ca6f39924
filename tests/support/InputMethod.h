// An input method at work in a widget.
#pragma once

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QWidget>

namespace inputmethod {

// Shows a text in the widget that is not decided yet.
inline void compose(QWidget *widget, const QString &text)
{
    QInputMethodEvent event(text, {});
    QCoreApplication::sendEvent(widget, &event);
}

// Ends the composition with this text.
inline void commit(QWidget *widget, const QString &text)
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace inputmethod
