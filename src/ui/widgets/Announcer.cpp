#include "ui/widgets/Announcer.h"

#include <QAccessibleWidget>
#include <QApplication>

namespace {

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *const announcer = qobject_cast<Announcer *>(object);
    return announcer ? new QAccessibleWidget(announcer, QAccessible::Notification) : nullptr;
}

} // namespace

Announcer::Announcer(QWidget *parent) : QWidget(parent)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
    setFixedSize(1, 1);
    hide();
}

void Announcer::announce(const QString &text)
{
    if (!parentWidget()->isVisible() || !QApplication::activeWindow())
        return;
    // A notification is said when it comes into sight.
    hide();
    setAccessibleName(text);
    show();
}
