#include "ui/widgets/ProgressBar.h"

ProgressBar::ProgressBar(const QString &name, QWidget *parent) : QProgressBar(parent)
{
    setTextVisible(false);
    setFixedHeight(8);
    setAccessibleName(name);
}

void ProgressBar::showFraction(std::optional<double> fraction)
{
    constexpr int steps = 1000;
    setRange(0, fraction ? steps : 0);
    if (fraction)
        setValue(static_cast<int>(qBound(0.0, *fraction, 1.0) * steps));
}
