// A continuous slider as assistive programs see it: the number that it stands for, not its handle's place.
#pragma once

#include <QAccessibleWidget>

class ContinuousSlider;

class ContinuousSliderAccessible : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit ContinuousSliderAccessible(ContinuousSlider *slider);

    // Lets every continuous slider be seen in this way.
    static void install();

    QString text(QAccessible::Text kind) const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QVariant currentValue() const override;
    void setCurrentValue(const QVariant &value) override;
    QVariant maximumValue() const override;
    QVariant minimumValue() const override { return 0.0; }
    QVariant minimumStepSize() const override;

private:
    ContinuousSlider &slider() const;
};
