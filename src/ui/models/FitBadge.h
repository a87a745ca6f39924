// How well a model fits the machine's memory, as a coloured badge.
#pragma once

#include "core/models/ModelCatalog.h"
#include "ui/widgets/Badge.h"

class FitBadge : public Badge
{
    Q_OBJECT

public:
    explicit FitBadge(Fit fit, QWidget *parent = nullptr);

    // The rule by which a model fits, in a sentence.
    static QString ruleText();
};
