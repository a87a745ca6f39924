// The messages of a conversation, one below the other, seen through a viewport. What is out of sight has
// guessed heights; when one turns out to be wrong, what is in sight stays where it is.
#pragma once

#include "core/chat/Conversation.h"
#include "ui/chat/transcript/MessageItem.h"
#include "ui/chat/transcript/RowAddress.h"
#include "ui/chat/transcript/TranscriptStyle.h"
#include "ui/widgets/HeightIndex.h"

#include <QSize>

#include <optional>
#include <vector>

class TranscriptLayout
{
public:
    // What a call of show() has changed.
    struct Change
    {
        bool isAny = false;
        bool isOtherConversation = false;
        bool hasNewText = false;           // the last message's text is of another length than before
        std::optional<int> firstReplaced;  // messages from this one on are gone, or others
        std::optional<RowAddress> changed; // rows from this one on may look different
    };

    explicit TranscriptLayout(const TranscriptStyle &style) : m_style(style) {}

    // Goes over to the conversation as it is now. While a reply is generated only the last message is looked
    // at; it must have grown at its end, if at all.
    Change show(const Conversation &conversation, bool isGenerating);
    // Whether the reply that is generated waits for its model to be loaded; returns whether that changes
    // what is shown.
    bool setLoadsModel(bool loads);
    void setViewport(QSize size);
    // Lays everything out again since the style has changed.
    void restyle();
    void setOpen(int message, bool isOpen);

    // The places to which the next settle() moves. Positions are those of the viewport's top.
    void moveTo(int top);
    void moveToEnd() { m_place.isEnd = true; }
    // Keeps the row where it is when what is around it changes.
    void holdOn(const RowAddress &address);

    // Measures what has come into sight, until nothing in sight is guessed.
    void settle();

    int count() const { return static_cast<int>(m_items.size()); }
    const MessageItem &item(int index) const { return m_items[static_cast<size_t>(index)]; }
    // Made when there is none; what is out of sight keeps its guessed height nevertheless.
    MessageBody &body(int index);
    int top() const { return m_top; }
    int end() const; // the last position
    // From top to bottom, as of the last settle().
    const std::vector<VisibleRow> &visible() const { return m_visible; }

    // In the viewport's coordinates.
    QPoint messageOrigin(int index) const;
    QRect messageRect(int index) const;
    std::optional<QRect> rect(const RowAddress &address) const;
    QRect rect(const TranscriptButton &button) const;
    // The message at or above `y`, or the first one.
    int messageAt(int y) const;

    // Its body stays even when it is out of sight; negative for none.
    void keepBody(int message) { m_kept = message; }

private:
    struct Place
    {
        bool isEnd = true;
        RowAddress anchor;
        int y = 0;         // of the anchor in the viewport
        double hidden = 0; // how much of the anchor, of its height, is above that
    };

    int columnWidth() const;
    int contentHeight() const;
    int messageTop(int index) const;
    // Keeps the text at the viewport's top there when all rows take other heights.
    void holdTop();
    int topAsPlaced() const;
    bool measure(int top);
    void collectVisible();
    void releaseBodies();
    void updateHeight(int index);
    void replaceFrom(const Conversation &conversation, int first);
    void showFacts(bool isGenerating, Change &change);
    void takeChanges(const Conversation &conversation, int first, bool isGenerating, Change &change);

    const TranscriptStyle &m_style;
    QUuid m_conversation;
    bool m_isGenerating = false;
    bool m_loadsModel = false;
    qsizetype m_lastSize = 0;
    int m_last = 0; // the message that was the last one when the facts were shown
    std::vector<MessageItem> m_items;
    HeightIndex m_heights; // of the messages with the gap below each
    QSize m_viewport;
    Place m_place;
    int m_top = 0;
    std::vector<VisibleRow> m_visible;
    std::vector<int> m_bodies; // messages that have one, in the order in which they came into sight
    int m_kept = -1;
};
