#include "ui/chat/ConversationSearch.h"

#include "core/chat/ChatStore.h"
#include "platform/text/Trimming.h"

#include <algorithm>

ConversationSearch::ConversationSearch(const ChatStore &store) : m_store(store) {}

bool ConversationSearch::setText(const QString &text)
{
    const LowerCaseSearch next(trimmedOfBlanks(text));
    if (next.query() == m_search.query())
        return false;
    // A search for nothing finds everything, which says nothing about the next.
    if (isBlank())
        m_found.clear();
    // What lacks a part of a text lacks the text, and what has the text has its parts.
    const bool longer = next.query().contains(m_search.query());
    const bool shorter = m_search.query().contains(next.query());
    m_found.removeIf([longer, shorter](const std::pair<const QUuid &, bool &> &entry) {
        return entry.second ? !shorter : !longer;
    });
    m_found.reserve(m_store.conversations().size());
    m_search = next;
    m_arriving.reset();
    return true;
}

std::optional<bool> ConversationSearch::known(const Conversation &conversation) const
{
    if (isBlank())
        return true;
    const auto answer = m_found.constFind(conversation.id);
    if (answer == m_found.cend() || !isOwnID(conversation))
        return std::nullopt;
    return *answer;
}

bool ConversationSearch::find(const Conversation &conversation)
{
    const bool isArriving = conversation.id == m_generating && !conversation.messages.isEmpty();
    const bool found = isArriving ? isInArriving(conversation) : isInWhole(conversation);
    if (isOwnID(conversation))
        m_found.insert(conversation.id, found);
    return found;
}

bool ConversationSearch::isInWhole(const Conversation &conversation) const
{
    return m_search.isIn(conversation.title) ||
           std::any_of(conversation.messages.cbegin(), conversation.messages.cend(),
                       [this](const ChatMessage &message) { return m_search.isIn(message.content); });
}

bool ConversationSearch::isInArriving(const Conversation &conversation)
{
    const ChatMessage &last = conversation.messages.last();
    const qsizetype size = last.content.size();
    const bool isKnown = m_arriving && m_arriving->message == last.id &&
                         m_arriving->title == conversation.title && m_arriving->size <= size;
    bool found = isKnown && m_arriving->found;
    if (!isKnown) {
        found = isInWhole(conversation);
    } else if (!found) {
        // What is looked for may have begun to arrive earlier; one unit more, not to halve a surrogate pair.
        const qsizetype from = m_arriving->size - m_search.query().size() - 1;
        found = m_search.isIn(last.content.sliced(qMax(from, qsizetype{0})));
    }
    m_arriving = {last.id, conversation.title, size, found};
    return found;
}

void ConversationSearch::forget(const QUuid &id)
{
    m_found.remove(id);
}

// Two files can hold conversations with one id.
bool ConversationSearch::isOwnID(const Conversation &conversation) const
{
    return m_store.find(conversation.id) == &conversation;
}
