#include "ui/widgets/ProminentButton.h"

#include "ui/widgets/Contrast.h"
#include "ui/widgets/Tint.h"

#include <QPainter>
#include <QStyleOptionButton>

ProminentButton::ProminentButton(const QString &text, QWidget *parent)
    : ProminentButton(text, Tint::accent, parent)
{
}

ProminentButton::ProminentButton(const QString &text, Tint fill, QWidget *parent)
    : Button(text, parent), m_fill(fill)
{
    setAttribute(Qt::WA_Hover);
}

void ProminentButton::paintEvent(QPaintEvent *event)
{
    if (!isEnabled()) {
        Button::paintEvent(event);
        return;
    }
    constexpr double radius = 4;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = tintColor(m_fill, palette());
    const QColor words = m_fill == Tint::accent ? tintColor(Tint::onAccent, palette()) : inkOn(fill);
    if (isDown())
        fill = fill.darker(118);
    else if (underMouse())
        fill = fill.darker(108);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        painter.setPen(QPen(words, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5), radius - 1, radius - 1);
    }
    QStyleOptionButton option;
    initStyleOption(&option);
    option.palette.setColor(QPalette::ButtonText, words);
    style()->drawControl(QStyle::CE_PushButtonLabel, &option, &painter, this);
}
