// Conversations that no case touches, to see that nothing else touches them either.
#pragma once

#include "core/chat/Conversation.h"

#include <QList>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

class ChatStore;

class KeptChats
{
public:
    // Begins them in `chats`. They hold something of every hostile text, and the last one is selected.
    KeptChats(ChatStore &chats, QRandomGenerator &random);

    QUuid first() const { return m_chats.first().id; }
    bool contains(const QUuid &id) const;
    // Whether it is the name of the file of one of them.
    bool containsFile(const QString &name) const;

    // What is wrong with them in `chats`, or with their files in `folder`.
    QStringList compare(const ChatStore &chats, const QString &folder) const;

private:
    QList<Conversation> m_chats;
};
