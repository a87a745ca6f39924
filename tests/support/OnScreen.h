// Finding what a window shows the way its user does: by the words on it, or by what a screen reader says.
#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextEdit>
#include <QWidget>

namespace onscreen {

inline QString words(const QWidget *widget)
{
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text().remove(QLatin1Char('&'));
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->text();
    if (const auto *text = qobject_cast<const QTextEdit *>(widget))
        return text->toPlainText();
    if (const auto *text = qobject_cast<const QPlainTextEdit *>(widget))
        return text->toPlainText();
    return {};
}

// The visible widget below `root` that carries these words or this name; null when there is none.
template <class T = QWidget>
T *find(const QWidget *root, const QString &name)
{
    const QList<T *> all = root->findChildren<T *>();
    for (T *widget : all) {
        if (widget->isVisible() && (words(widget) == name || widget->accessibleName() == name))
            return widget;
    }
    return nullptr;
}

inline bool shows(const QWidget *root, const QString &name)
{
    return find(root, name) != nullptr;
}

inline bool canClick(const QWidget *root, const QString &name)
{
    const auto *button = find<QAbstractButton>(root, name);
    return button && button->isEnabled();
}

// Clicks with the mouse; ends the test when there is no such button to click.
inline void click(const QWidget *root, const QString &name)
{
    auto *button = find<QAbstractButton>(root, name);
    if (!button || !button->isEnabled())
        qFatal("There is no button \"%s\" to click", qUtf8Printable(name));
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace onscreen
