#include "ui/chat/transcript/MessageItem.h"

#include <QtMath>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Shared texts are told to be equal at a glance.
bool isEqual(const QString &a, const QString &b)
{
    return a.size() == b.size() && (a.constData() == b.constData() || a == b);
}

} // namespace

MessageItem::MessageItem(const ChatMessage &message)
    : m_message(message), m_contentSize(message.content.size()), m_thinkingSize(message.thinking.size())
{
    m_facts.isUsers = message.role == "user"_L1;
    m_facts.tokensPerSecond = message.tokensPerSecond;
}

bool MessageItem::isSame(const ChatMessage &message) const
{
    return message.id == m_message.id && message.role == m_message.role;
}

bool MessageItem::shows(const ChatMessage &message) const
{
    if (!isSame(message) || message.tokensPerSecond != m_facts.tokensPerSecond)
        return false;
    if (message.content.size() != m_contentSize || message.thinking.size() != m_thinkingSize)
        return false;
    return !m_keepsText ||
           (isEqual(message.content, m_message.content) && isEqual(message.thinking, m_message.thinking));
}

std::optional<MessageRow> MessageItem::take(const ChatMessage &message, bool isArriving,
                                            const TranscriptStyle &style, int width)
{
    const bool wasArriving = !m_keepsText;
    m_contentSize = message.content.size();
    m_thinkingSize = message.thinking.size();
    m_facts.tokensPerSecond = message.tokensPerSecond;
    m_keepsText = !isArriving;
    m_message = message;
    std::optional<MessageRow> first = MessageRow{};
    if (m_body && (isArriving || wasArriving)) {
        m_body->setFacts(m_facts);
        first = m_body->update(message);
    } else {
        m_body.reset();
        if (isArriving)
            ensureBody(style, width);
    }
    if (!m_keepsText) {
        m_message.content.clear();
        m_message.thinking.clear();
    }
    return first;
}

bool MessageItem::setFacts(const MessageFacts &facts)
{
    if (facts == m_facts)
        return false;
    m_facts = facts;
    if (m_body)
        m_body->setFacts(facts);
    return true;
}

MessageBody &MessageItem::ensureBody(const TranscriptStyle &style, int width)
{
    if (!m_body)
        m_body = std::make_unique<MessageBody>(m_message, m_facts, style, width);
    return *m_body;
}

void MessageItem::releaseBody()
{
    if (m_keepsText)
        m_body.reset();
}

int MessageItem::height(const TranscriptStyle &style, int width) const
{
    if (m_body)
        return m_body->height();
    const int free = m_facts.isUsers ? TranscriptStyle::freeBesideBubble : TranscriptStyle::freeBesideAnswer;
    const double textWidth = static_cast<double>(m_contentSize) * style.bodyCharacterWidth;
    const int lines = qCeil(textWidth / std::max(1, width - free));
    const int around =
        m_facts.isUsers ? 2 * TranscriptStyle::bubblePadding : TranscriptStyle::partGap + style.captionHeight;
    return lines * style.bodyLineHeight + around;
}
