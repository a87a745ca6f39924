#include "ui/widgets/ContinuousSliderAccessible.h"

#include "ui/widgets/ContinuousSlider.h"

namespace {

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *const slider = qobject_cast<ContinuousSlider *>(object);
    return slider ? new ContinuousSliderAccessible(slider) : nullptr;
}

} // namespace

ContinuousSliderAccessible::ContinuousSliderAccessible(ContinuousSlider *slider)
    : QAccessibleWidget(slider, QAccessible::Slider)
{
}

void ContinuousSliderAccessible::install()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
}

ContinuousSlider &ContinuousSliderAccessible::slider() const
{
    return *static_cast<ContinuousSlider *>(object());
}

QString ContinuousSliderAccessible::text(QAccessible::Text kind) const
{
    return kind == QAccessible::Value ? slider().numberText() : QAccessibleWidget::text(kind);
}

void *ContinuousSliderAccessible::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

QVariant ContinuousSliderAccessible::currentValue() const
{
    return slider().number();
}

void ContinuousSliderAccessible::setCurrentValue(const QVariant &value)
{
    slider().moveTo(value.toDouble());
}

QVariant ContinuousSliderAccessible::maximumValue() const
{
    return slider().most();
}

QVariant ContinuousSliderAccessible::minimumStepSize() const
{
    return slider().most() / 100;
}
