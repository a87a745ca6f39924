#include "ui/widgets/Divider.h"

#include "ui/widgets/Tint.h"

#include <QPainter>

Divider::Divider(Qt::Orientation orientation, QWidget *parent) : QWidget(parent)
{
    if (orientation == Qt::Horizontal)
        setFixedHeight(1);
    else
        setFixedWidth(1);
}

void Divider::paintEvent(QPaintEvent *)
{
    const double opacity = isHighContrast(palette()) ? 0.6 : 0.15;
    QPainter(this).fillRect(rect(), tintColor(Tint::text, palette(), opacity));
}
