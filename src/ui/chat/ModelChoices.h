// What a conversation's model picker offers.
#pragma once

#include "core/models/InstalledIndex.h"

#include <QString>
#include <QStringList>

struct ModelChoices
{
    QStringList entries;
    int current = 0;
    // The first entry stands for the model the conversation has, which is not installed, or for none.
    bool hasExtra = false;

    bool operator==(const ModelChoices &) const = default;

    static ModelChoices make(const InstalledIndex &installed, const QString &model);
};
