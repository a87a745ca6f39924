// One entry of the engine's list of installed models.
#pragma once

#include <QString>

struct InstalledModel
{
    QString name = {};
    qint64 size = 0; // bytes on disk
    QString family = {};
    QString parameterSize = {}; // as the engine reports it, for example "3.2B"
    QString quantization = {};  // as the engine reports it, for example "Q4_K_M"

    bool operator==(const InstalledModel &) const = default;
};

size_t qHash(const InstalledModel &model, size_t seed = 0) noexcept;
