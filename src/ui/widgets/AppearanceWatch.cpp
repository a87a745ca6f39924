#include "ui/widgets/AppearanceWatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

AppearanceWatch &AppearanceWatch::shared()
{
    static QPointer<AppearanceWatch> watch;
    if (!watch)
        watch = new AppearanceWatch(QCoreApplication::instance());
    return *watch;
}

AppearanceWatch::AppearanceWatch(QObject *application) : QObject(application)
{
    application->installEventFilter(this);
}

bool AppearanceWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::ApplicationFontChange)
        Q_EMIT fontChanged();
    else if (watched == parent() && event->type() == QEvent::ApplicationPaletteChange)
        Q_EMIT paletteChanged();
    return QObject::eventFilter(watched, event);
}
