#include "ui/widgets/FieldStyle.h"

#include "ui/widgets/Tint.h"

#include <QApplication>
#include <QPainter>
#include <QPlainTextEdit>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace {

const QString qtsOwn = u"fusion"_s;

bool isTextField(const QWidget *widget)
{
    const auto *const text = qobject_cast<const QPlainTextEdit *>(widget);
    return text && !text->isReadOnly();
}

void drawEdge(const QRect &field, const QStyleOption &option, QPainter &painter, double radius, Tint tint)
{
    if (!option.state.testFlag(QStyle::State_Enabled))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(tintColor(tint, option.palette));
    painter.drawRoundedRect(QRectF(field).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

} // namespace

FieldStyle::FieldStyle() : QProxyStyle(qtsOwn) {}

void FieldStyle::install()
{
    if (QApplication::style()->name() == qtsOwn)
        QApplication::setStyle(new FieldStyle);
}

bool FieldStyle::isInstalled()
{
    return qobject_cast<FieldStyle *>(QApplication::style());
}

void FieldStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (element == PE_FrameLineEdit && !option->state.testFlag(State_HasFocus))
        drawEdge(option->rect, *option, *painter, 2, Tint::edge);
    else if (element == PE_Frame && isTextField(widget))
        drawEdge(option->rect, *option, *painter, 0, widget->hasFocus() ? Tint::accentInk : Tint::edge);
}

void FieldStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                    QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox && !option->state.testFlag(State_HasFocus))
        drawEdge(option->rect.adjusted(0, 1, 0, -1), *option, *painter, 2, Tint::edge);
}
