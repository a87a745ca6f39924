// One message as it is shown: its parts, one below the other, in a column. Coordinates are device-independent
// pixels, relative to the column's upper left corner.
#pragma once

#include "core/chat/ChatMessage.h"
#include "core/chat/ParsedReply.h"
#include "ui/chat/transcript/FlowLinks.h"
#include "ui/chat/transcript/MessageFacts.h"
#include "ui/chat/transcript/MessageFooter.h"
#include "ui/chat/transcript/MessagePart.h"
#include "ui/chat/transcript/TextFlow.h"
#include "ui/chat/transcript/TranscriptButton.h"
#include "ui/chat/transcript/TranscriptPaint.h"

#include <functional>
#include <optional>
#include <vector>

class MessageBody
{
public:
    // `style` must outlive the body. `width` is the column's.
    MessageBody(const ChatMessage &message, const MessageFacts &facts, const TranscriptStyle &style,
                int width);

    // Goes over to the message as it is now. Returns the first row that may look different; rows that come,
    // go or move are not counted.
    std::optional<MessageRow> update(const ChatMessage &message);
    void setFacts(const MessageFacts &facts);
    void setWidth(int width);

    int height() const;
    bool measure(int top, int bottom);
    void release(int top, int bottom);

    // Calls `visit` for every row between `top` and `bottom` with the place that its painting takes.
    void forEachRow(int top, int bottom, const std::function<void(MessageRow, QRect)> &visit) const;
    // Nothing when there is no such row.
    std::optional<QRect> rect(MessageRow row) const;

    // Paints what lies within the clip, the column beginning at `origin`. `index` is the message's.
    void paint(const TranscriptPaint &paint, QPoint origin, int index);

    // In reading order; `index` is the message's.
    std::vector<TranscriptButton> buttons(int index);
    // Null when the button is none of the links.
    const FlowLink *link(const TranscriptButton &button);
    // Empty when there is no such button.
    QRect rect(const TranscriptButton &button) const;
    // Other than a link.
    std::optional<TranscriptButton> buttonAt(QPoint point, int index) const;

    // Empty when the part does not show.
    QRect partRect(MessagePart part) const;
    // Null when the part is no text.
    TextFlow *flow(MessagePart part);
    const TextFlow *flow(MessagePart part) const;
    QPoint flowOrigin(MessagePart part) const;

    // What stands beside the text: what is waited for, or how fast the reply came. May be empty.
    QString status() const;
    // Whether the part does not show the whole of its text.
    bool isCut(MessagePart part) const;

private:
    struct Box
    {
        MessagePart part;
        QRect rect;
    };

    void layOut();
    void place(MessagePart part, int gap, QSize size);
    void placeNotice();
    const Box *box(MessagePart part) const;
    QString waitingText() const;
    QRect linkRect(const TranscriptButton &link) const;
    MessageFooter footer() const { return MessageFooter(m_facts, m_style); }
    void paintPart(const TranscriptPaint &paint, const Box &box, QPoint origin, int index);
    void paintFlow(const TranscriptPaint &paint, QPoint origin, int index, MessagePart part);

    const TranscriptStyle &m_style;
    int m_width;
    MessageFacts m_facts;
    QString m_content;        // the user's
    ParsedReply m_reply;      // or the model's
    bool m_isLeftOut = false; // some of it
    TextFlow m_reasoning;
    TextFlow m_text;
    FlowLinks m_links;        // of the text
    std::vector<Box> m_boxes; // of the parts that show, from top to bottom
};
