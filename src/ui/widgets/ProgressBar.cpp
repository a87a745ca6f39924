#include "ui/widgets/ProgressBar.h"

#include "ui/widgets/AppearanceWatch.h"

ProgressBar::ProgressBar(const QString &name, QWidget *parent) : QProgressBar(parent)
{
    setTextVisible(false);
    setFixedHeight(8);
    setAccessibleName(name);
    connect(&AppearanceWatch::shared(), &AppearanceWatch::motionChanged, this, &ProgressBar::render);
}

void ProgressBar::showFraction(std::optional<double> fraction)
{
    m_fraction = fraction;
    render();
}

void ProgressBar::render()
{
    constexpr int steps = 1000;
    const bool isToMove = !m_fraction && !AppearanceWatch::shared().isMotionReduced();
    setRange(0, isToMove ? 0 : steps);
    if (!isToMove)
        setValue(static_cast<int>(qBound(0.0, m_fraction.value_or(0), 1.0) * steps));
}
