// What is sent to the engine to get the next message of a conversation.
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>

#include <optional>

struct ChatRequestMessage
{
    QString role = {}; // "system", "user" or "assistant"
    QString content = {};

    bool operator==(const ChatRequestMessage &) const = default;
};

struct ChatRequest
{
    QString model = {};
    QList<ChatRequestMessage> messages = {};
    QJsonObject options = {};
    std::optional<bool> think = {};                           // left out of the request when absent
    QJsonValue keepAlive = QJsonValue(QJsonValue::Undefined); // left out when undefined

    bool operator==(const ChatRequest &) const = default;
};
