#include "KeptChats.h"

#include "HostileText.h"
#include "core/chat/ChatStore.h"
#include "core/chat/ConversationFile.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool saysTheSame(const Conversation &kept, const Conversation *other)
{
    const auto isSame = [](const ChatMessage &a, const ChatMessage &b) {
        return a.id == b.id && a.content == b.content;
    };
    return other && kept.title == other->title && std::ranges::equal(kept.messages, other->messages, isSame);
}

} // namespace

KeptChats::KeptChats(ChatStore &chats, QRandomGenerator &random)
{
    for (int i = 0; i < 3; ++i) {
        const QUuid id = chats.newConversation(u"sound:latest"_s).id;
        chats.mutate(id, [&random](Conversation &conversation) {
            for (const QString &role : {u"user"_s, u"assistant"_s})
                conversation.messages.append(ChatMessage::make(role, HostileText::mixture(random, 300)));
            conversation.messages.last().content += HostileText::sample();
        });
        chats.rename(id, u"kept %1"_s.arg(i));
        m_chats.append(*chats.conversation(id));
    }
}

bool KeptChats::contains(const QUuid &id) const
{
    return std::ranges::any_of(m_chats, [&id](const Conversation &kept) { return kept.id == id; });
}

bool KeptChats::containsFile(const QString &name) const
{
    return std::ranges::any_of(
        m_chats, [&name](const Conversation &kept) { return ConversationFile::name(kept.id) == name; });
}

QStringList KeptChats::compare(const ChatStore &chats, const QString &folder) const
{
    QStringList faults;
    for (const Conversation &kept : m_chats) {
        QFile file(folder + u'/' + ConversationFile::name(kept.id));
        const auto stored =
            file.open(QIODevice::ReadOnly) ? ConversationFile::decode(file.readAll()) : std::nullopt;
        if (!saysTheSame(kept, chats.find(kept.id)))
            faults.append(u"A conversation has changed: "_s + kept.title);
        if (!saysTheSame(kept, stored ? &*stored : nullptr))
            faults.append(u"The file of a conversation has changed: "_s + kept.title);
    }
    return faults;
}
