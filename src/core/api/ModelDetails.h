// What the engine knows about one model.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

struct ModelDetails
{
    QString parameters = {};                  // the model's parameter block, one text
    std::optional<qint64> contextLength = {}; // trained context length in tokens
    QString quantization = {};
    QString family = {};
    QString parameterSize = {};
    QString license = {};          // may be long
    QStringList capabilities = {}; // what the model can do, for example "thinking"

    bool operator==(const ModelDetails &) const = default;
};
