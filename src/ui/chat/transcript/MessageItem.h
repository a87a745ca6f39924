// A message of the transcript. What it takes to show it is made when it comes into sight.
#pragma once

#include "core/chat/ChatMessage.h"
#include "ui/chat/transcript/MessageBody.h"

#include <memory>
#include <optional>

class MessageItem
{
public:
    explicit MessageItem(const ChatMessage &message);

    const QUuid &id() const { return m_message.id; }
    const MessageFacts &facts() const { return m_facts; }
    // Without its texts while they are not kept.
    const ChatMessage &message() const { return m_message; }

    // Whether `message` is what the item shows already; told without reading the texts where they are shared.
    bool shows(const ChatMessage &message) const;
    // Whether it is the same message, its text apart.
    bool isSame(const ChatMessage &message) const;

    // Goes over to the message as it is now. While it `isArriving` its text is read and not kept, since
    // keeping it would make each chunk copy the whole of it. Returns the first row that may look different.
    std::optional<MessageRow> take(const ChatMessage &message, bool isArriving, const TranscriptStyle &style,
                                   int width);
    bool keepsText() const { return m_keepsText; }
    // How much text the message holds, of both kinds.
    qsizetype size() const { return m_contentSize + m_thinkingSize; }
    // Returns whether anything differs.
    bool setFacts(const MessageFacts &facts);

    MessageBody *body() { return m_body.get(); }
    const MessageBody *body() const { return m_body.get(); }
    // Makes the body when there is none; `width` is the column's.
    MessageBody &ensureBody(const TranscriptStyle &style, int width);
    // Lets go of the body unless the text cannot be had again.
    void releaseBody();
    // The body's height, or a guess.
    int height(const TranscriptStyle &style, int width) const;

private:
    ChatMessage m_message;
    qsizetype m_contentSize = 0;
    qsizetype m_thinkingSize = 0;
    bool m_keepsText = true;
    MessageFacts m_facts;
    std::unique_ptr<MessageBody> m_body;
};
