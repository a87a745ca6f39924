// The form of a conversation's file: pretty-printed JSON with sorted members, read strictly.
#pragma once

#include "core/chat/Conversation.h"

#include <QByteArray>
#include <QString>
#include <QUuid>

#include <optional>

class ConversationFile
{
public:
    // The name of the file that holds the conversation with this id.
    static QString name(const QUuid &id);

    // The file's content; fractions of seconds are dropped. Nothing when JSON has no form for a value: a
    // speed that is not finite, a date that is invalid or outside the years 1 to 9999. Any thread.
    static std::optional<QByteArray> encode(const Conversation &conversation);

    // Nothing when `content` is not such a file: not JSON, a member missing or of another type, an id that is
    // no UUID, a date of another form. Members it does not know are passed over. Any thread.
    static std::optional<Conversation> decode(const QByteArray &content);
};
