// Which conversations a search finds. Remembers what it found out about each, so that a longer or a shorter
// search looks only where the answer may be another one, and in a reply that arrives only at what is new.
#pragma once

#include "platform/text/LowerCaseSearch.h"

#include <QHash>
#include <QString>
#include <QUuid>

#include <optional>

class ChatStore;
struct Conversation;

class ConversationSearch
{
public:
    // `store` must outlive the search.
    explicit ConversationSearch(const ChatStore &store);

    // Takes what the user typed; blanks at both ends do not count. False when that is the same search.
    bool setText(const QString &text);
    // Every conversation is found.
    bool isBlank() const { return m_search.query().isEmpty(); }

    // The conversation whose reply is being generated, if any. Until it is another one its last message grows
    // at its end, and apart from the title nothing else of the conversation changes.
    void setGenerating(const std::optional<QUuid> &id) { m_generating = id; }

    // What find() would say, if that is known without looking. `conversation` is one of the store's.
    std::optional<bool> known(const Conversation &conversation) const;
    // Whether the title or a message's text contains what is looked for, upper and lower case being the same.
    // Reasoning that the engine delivered apart is not searched.
    bool find(const Conversation &conversation);
    // The conversation has changed.
    void forget(const QUuid &id);

private:
    // A reply that arrives, as it was when it was last looked at.
    struct Arriving
    {
        QUuid message;
        QString title;
        qsizetype size;
        bool found;
    };

    bool isOwnID(const Conversation &conversation) const;
    bool isInWhole(const Conversation &conversation) const;
    bool isInArriving(const Conversation &conversation);

    const ChatStore &m_store;
    LowerCaseSearch m_search;
    QHash<QUuid, bool> m_found;
    std::optional<QUuid> m_generating;
    std::optional<Arriving> m_arriving;
};
