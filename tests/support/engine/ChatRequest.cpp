#include "ChatRequest.h"

#include "Json.h"

#include <QJsonArray>

namespace demo {

using namespace Qt::StringLiterals;

namespace {

std::optional<Refusal> readMessages(const QJsonValue &value, ChatRequest &request)
{
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isArray()) {
        return Refusal{
            400, "json: cannot unmarshal into Go struct field ChatRequest.messages of type []api.Message"};
    }
    const QJsonArray messages = value.toArray();
    for (const auto &entry : messages) {
        const QJsonObject message = entry.toObject();
        const QJsonValue content = message.value("content"_L1);
        const bool mistyped = !content.isString() && !content.isUndefined() && !content.isNull();
        if (!entry.isObject() || mistyped || !message.value("role"_L1).isString()) {
            return Refusal{
                400, "json: cannot unmarshal into Go struct field ChatRequest.messages of type api.Message"};
        }
        ++request.messageCount;
        const std::string text = toStd(content.toString());
        request.promptBytes += static_cast<qint64>(text.size());
        if (message.value("role"_L1).toString() == "user"_L1) {
            request.lastUserText = text;
        }
    }
    return std::nullopt;
}

// Left out means on for models that can; some models take a level instead of a truth value.
std::optional<Refusal> readThink(const QJsonValue &value, ChatRequest &request)
{
    const bool can = request.facts.can("thinking");
    request.thinks = can;
    if (value.isUndefined() || value.isNull()) {
        return std::nullopt;
    }
    if (!value.isBool() && !value.isString()) {
        return Refusal{400,
                       "think must be a boolean or string (\"high\", \"medium\", \"low\", true, or false)"};
    }
    const bool wanted = value.isString() || value.toBool();
    if (wanted && !can) {
        return Refusal{400, "\"" + request.model.text + "\" does not support thinking"};
    }
    request.thinks = wanted;
    return std::nullopt;
}

} // namespace

std::variant<ChatRequest, Refusal> parseChatRequest(const QJsonObject &body)
{
    const auto keepAlive = keepAliveOf(body);
    if (const Refusal *refusal = std::get_if<Refusal>(&keepAlive)) {
        return *refusal;
    }
    const auto model = modelOf(body);
    if (const Refusal *refusal = std::get_if<Refusal>(&model)) {
        return *refusal;
    }
    ChatRequest request;
    request.keepAlive = std::get<0>(keepAlive);
    request.model = std::get<ModelRequest>(model);
    request.facts = factsFor(request.model.name);
    request.streamed = body.value("stream"_L1).toBool(true);
    if (const auto refusal = readMessages(body.value("messages"_L1), request)) {
        return *refusal;
    }
    if (const auto refusal = readThink(body.value("think"_L1), request)) {
        return *refusal;
    }
    const auto contextLength = contextLengthOf(body.value("options"_L1));
    if (const Refusal *refusal = std::get_if<Refusal>(&contextLength)) {
        return *refusal;
    }
    request.contextLength = std::get<qint64>(contextLength);
    return request;
}

} // namespace demo
