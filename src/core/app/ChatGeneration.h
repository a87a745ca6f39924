// What a chat sends to the engine and what it makes of the answer, as functions of values.
#pragma once

#include "core/api/ChatChunk.h"
#include "core/api/ChatRequest.h"
#include "core/chat/Conversation.h"
#include "core/chat/ModelSettings.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>

namespace ChatGeneration {

// The start of `text`: at most 40 characters as the user perceives them, an emoji or an accented letter
// counting as one.
QString titleFrom(const QString &text);

// The system prompt unless blank, then every message without its reasoning; replies that held nothing else
// are left out.
QList<ChatRequestMessage> requestMessages(const Conversation &conversation, const ModelSettings &settings);

QJsonObject options(const ModelSettings &settings);

// A text such as "5m", or the number itself when it is no positive count of minutes.
QJsonValue keepAliveValue(int minutes);

// The whole request. `capabilities` is what the conversation's model can do.
ChatRequest request(const Conversation &conversation, const ModelSettings &settings,
                    const QStringList &capabilities);

// Appends what `chunk` brings to `reply`.
void apply(const ChatChunk &chunk, ChatMessage &reply);

// Whether `message` is a reply in which nothing has arrived.
bool isEmptyReply(const ChatMessage &message);

} // namespace ChatGeneration
