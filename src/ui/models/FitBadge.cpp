#include "ui/models/FitBadge.h"

FitBadge::FitBadge(Fit fit, QWidget *parent) : Badge(parent)
{
    switch (fit) {
    case Fit::good:
        setBadge(tr("Good fit"), Tint::green);
        break;
    case Fit::tight:
        setBadge(tr("Tight"), Tint::orange);
        break;
    case Fit::tooBig:
        setBadge(tr("Too big for this Mac"), Tint::red);
        break;
    }
    setToolTip(ruleText());
}

QString FitBadge::ruleText()
{
    return tr(
        "Fit rule: a model is a good fit when its download size is under 35% of this Mac's memory, tight "
        "under 60%, and otherwise too big.");
}
