// One line of the engine's report while it pulls a model.
#pragma once

#include <QString>

#include <optional>

struct PullProgress
{
    QString status = {};                // the engine's status text
    std::optional<QString> digest = {}; // the layer this line is about
    qint64 total = 0;                   // bytes of that layer
    qint64 completed = 0;               // bytes of it received so far

    bool operator==(const PullProgress &) const = default;
};
