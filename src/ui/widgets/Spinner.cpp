#include "ui/widgets/Spinner.h"

#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/Tint.h"

#include <QPainter>

Spinner::Spinner(int diameter, const QString &name, QWidget *parent) : Graphic(parent)
{
    setFixedSize(diameter, diameter);
    setAccessibleName(name);
    m_timer.setInterval(50);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_angle = (m_angle + 18) % 360;
        update();
    });
    connect(&AppearanceWatch::shared(), &AppearanceWatch::motionChanged, this, &Spinner::turnOrRest);
}

void Spinner::turnOrRest()
{
    if (isVisible() && !AppearanceWatch::shared().isMotionReduced())
        m_timer.start();
    else
        m_timer.stop();
}

void Spinner::showEvent(QShowEvent *event)
{
    turnOrRest();
    QWidget::showEvent(event);
}

void Spinner::hideEvent(QHideEvent *event)
{
    turnOrRest();
    QWidget::hideEvent(event);
}

void Spinner::paintEvent(QPaintEvent *)
{
    constexpr int sixteenths = 16; // drawArc counts in sixteenths of a degree
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.setPen(QPen(tintColor(Tint::text, palette(), 0.15), 2));
    painter.drawEllipse(ring);
    painter.setPen(QPen(tintColor(Tint::secondary, palette()), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -m_angle * sixteenths, 90 * sixteenths);
}
