#include "ui/widgets/ContinuousSlider.h"

#include "ui/widgets/ContinuousSliderAccessible.h"

#include <QSignalBlocker>

#include <cmath>

namespace {

// The styles place a handle less exactly on ranges longer than 524,287.
constexpr int steps = 500'000;

} // namespace

ContinuousSlider::ContinuousSlider(double most, QWidget *parent)
    : QSlider(Qt::Horizontal, parent), m_most(most)
{
    setRange(0, steps);
    setSingleStep(steps / 100);
    setPageStep(steps / 10);
    ContinuousSliderAccessible::install();
    connect(this, &QSlider::valueChanged, this, [this](int value) {
        m_number = value * m_most / steps;
        Q_EMIT moved(m_number);
    });
}

int ContinuousSlider::positionOf(double number) const
{
    return static_cast<int>(std::lround(qBound(0.0, number / m_most, 1.0) * steps));
}

void ContinuousSlider::showNumber(double number)
{
    const QSignalBlocker quiet(this);
    setValue(positionOf(number));
    m_number = number;
}

void ContinuousSlider::moveTo(double number)
{
    setValue(positionOf(number));
}
