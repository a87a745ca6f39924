#include "ui/widgets/StatusDot.h"

#include <QPainter>

StatusDot::StatusDot(int diameter, Tint tint, QWidget *parent) : Graphic(parent), m_tint(tint)
{
    setFixedSize(diameter, diameter);
}

void StatusDot::setTint(Tint tint)
{
    if (tint == m_tint)
        return;
    m_tint = tint;
    update();
}

void StatusDot::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tintColor(m_tint, palette()));
    painter.drawEllipse(rect());
}
