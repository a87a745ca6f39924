#pragma once

// A chat request, read and checked as the engine does it.

#include "ModelFacts.h"
#include "ModelRequest.h"

#include <QJsonObject>

#include <chrono>
#include <optional>
#include <string>
#include <variant>

namespace demo {

struct ChatRequest
{
    ModelRequest model;
    ModelFacts facts;
    std::optional<std::chrono::nanoseconds> keepAlive;
    qint64 contextLength = 0;
    bool thinks = false;
    bool streamed = true;
    int messageCount = 0;
    qint64 promptBytes = 0;
    std::string lastUserText;
};

// Everything but whether the model is installed.
std::variant<ChatRequest, Refusal> parseChatRequest(const QJsonObject &body);

} // namespace demo
