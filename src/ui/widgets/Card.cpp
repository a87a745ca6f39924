#include "ui/widgets/Card.h"

#include "ui/widgets/TextLabel.h"

#include <QPainter>

Card::Card(QWidget *parent) : QWidget(parent), m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(16, 12, 16, 12);
    m_column->setSpacing(8);
}

void Card::setFill(Tint tint, double opacity)
{
    m_tint = tint;
    m_opacity = opacity;
    update();
}

void Card::setRadius(int radius)
{
    m_radius = radius;
    update();
}

void Card::addHeading(const QString &heading)
{
    m_column->addWidget(new TextLabel(heading, TextStyle::headline));
}

void Card::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tintColor(m_tint, palette(), m_opacity));
    painter.drawRoundedRect(rect(), m_radius, m_radius);
}
