#pragma once

// What the engine tells about a model, made up plausibly from the model's name.

#include "ModelName.h"

#include <QtGlobal>

#include <string>
#include <vector>

namespace demo {

struct ModelFacts
{
    std::string family;
    std::string parameterSize;
    std::string quantization = "Q4_K_M";
    qint64 sizeBytes = 0;
    qint64 parameterCount = 0;
    qint64 contextLength = 0;
    qint64 embeddingLength = 0;
    int blockCount = 0;
    std::vector<std::string> capabilities;
    std::string license;
    std::string chatTemplate;
    // Name and value, as the engine lists them.
    std::vector<std::string> parameters;

    bool operator==(const ModelFacts &) const = default;

    bool can(const std::string &capability) const;
};

ModelFacts factsFor(const ModelName &name);

} // namespace demo
