#pragma once

// What a request says about the model it is for, checked as the engine checks it.

#include "ModelName.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QtGlobal>

#include <chrono>
#include <optional>
#include <string>
#include <variant>

namespace demo {

// An answer with an error status.
struct Refusal
{
    int status = 400;
    std::string text;

    bool operator==(const Refusal &) const = default;
};

struct ModelRequest
{
    // As the client wrote it.
    std::string text;
    ModelName name;
};

using KeepAliveAnswer = std::variant<std::optional<std::chrono::nanoseconds>, Refusal>;

// "model", or "name" from older clients.
std::string modelTextOf(const QJsonObject &body);
std::variant<ModelRequest, Refusal> modelOf(const QJsonObject &body);

// Nothing for a negative value, which means for ever; five minutes when it is left out.
KeepAliveAnswer keepAliveOf(const QJsonObject &body);

// The context length that the options ask for, or the engine's own.
std::variant<qint64, Refusal> contextLengthOf(const QJsonValue &options);

} // namespace demo
