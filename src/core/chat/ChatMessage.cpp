#include "core/chat/ChatMessage.h"

#include "core/chat/ParsedReply.h"

ChatMessage ChatMessage::make(const QString &role, const QString &content)
{
    return {QUuid::createUuid(), role, content, {}, {}, QDateTime::currentDateTimeUtc()};
}

ParsedMessage ChatMessage::parsed() const
{
    ParsedReply split;
    split.update(content, thinking);
    return {split.reasoning().toString(), split.answer().toString()};
}
