// What a search over all conversations means, letter by letter: slow, and what the list of chats has to agree
// with.
#pragma once

#include "core/chat/ChatStore.h"

// `query` is in lower case.
inline QList<QUuid> referenceSearch(const ChatStore &store, const QString &query)
{
    QList<QUuid> ids;
    for (const Conversation &conversation : store.conversations()) {
        bool matches = conversation.title.toLower().contains(query);
        for (const ChatMessage &message : conversation.messages)
            matches = matches || message.content.toLower().contains(query);
        if (matches)
            ids.append(conversation.id);
    }
    return ids;
}
