#include "ui/widgets/FocusRing.h"

#include "ui/widgets/Tint.h"

#include <QEvent>
#include <QPainter>

FocusRing::FocusRing(QWidget *target) : QWidget(target), m_target(target)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    target->installEventFilter(this);
    connect(target, &QObject::destroyed, this, &QObject::deleteLater);
}

void FocusRing::place()
{
    constexpr int gap = 4;
    setGeometry(m_target->geometry().adjusted(-gap, -gap, gap, gap));
}

bool FocusRing::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
        if (!m_target->parentWidget() || !window()->testAttribute(Qt::WA_KeyboardFocusChange))
            break;
        setParent(m_target->parentWidget());
        place();
        raise();
        show();
        break;
    case QEvent::FocusOut:
        hide();
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (isVisible())
            place();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void FocusRing::paintEvent(QPaintEvent *)
{
    constexpr double radius = 6;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(tintColor(Tint::accentInk, palette()), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
}
