#include "ui/widgets/AppearanceWatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <utility>

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

void AppearanceWatch::setMotionReduced(bool reduced)
{
    if (std::exchange(m_motionReduced, reduced) != reduced)
        Q_EMIT motionChanged();
}

bool AppearanceWatch::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::ApplicationFontChange)
        Q_EMIT fontChanged();
    else if (watched == parent() && event->type() == QEvent::ApplicationPaletteChange)
        Q_EMIT paletteChanged();
    return QObject::eventFilter(watched, event);
}
