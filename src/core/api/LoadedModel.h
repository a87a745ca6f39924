// One model that the engine holds in memory.
#pragma once

#include <QString>

struct LoadedModel
{
    QString name = {};
    qint64 size = 0; // bytes of memory

    bool operator==(const LoadedModel &) const = default;
};

size_t qHash(const LoadedModel &model, size_t seed = 0) noexcept;
