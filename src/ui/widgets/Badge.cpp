#include "ui/widgets/Badge.h"

#include <QPainter>

Badge::Badge(QWidget *parent) : TextLabel(TextStyle::caption, Tint::text, parent)
{
    setBold();
    setContentsMargins(8, 2, 8, 2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Badge::setBadge(const QString &text, Tint tint)
{
    m_tint = tint;
    setText(text);
    setTint(tint);
    update();
}

void Badge::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tintColor(m_tint, palette(), 0.2));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    painter.end();
    TextLabel::paintEvent(event);
}
