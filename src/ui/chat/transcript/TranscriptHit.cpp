#include "ui/chat/transcript/TranscriptHit.h"

#include "ui/chat/transcript/CodeBlockBox.h"
#include "ui/chat/transcript/TranscriptLayout.h"

namespace {

// The indicator is thin; so much around it counts as it.
constexpr int handleReach = 4;

void lookIntoText(TextFlow &flow, QPoint point, TranscriptHit &hit)
{
    hit.link = flow.linkAt(point);
    if (flow.rowCount() == 0 || point.y() < 0 || point.y() >= flow.height())
        return;
    const int block = flow.rows().row(flow.rowAt(point.y())).block;
    if (block < 0)
        return;
    const CodeBlockBox box(flow, block);
    if (!box.rect().contains(point))
        return;
    hit.block = block;
    const QRect handle = box.handle();
    hit.isHandle = !handle.isEmpty() &&
                   handle.adjusted(-handleReach, -handleReach, handleReach, handleReach).contains(point);
}

} // namespace

TranscriptHit TranscriptHit::at(TranscriptLayout &layout, QPoint point)
{
    TranscriptHit hit;
    if (layout.count() == 0)
        return hit;
    const int message = layout.messageAt(point.y());
    if (!layout.messageRect(message).adjusted(-buttonPadding, 0, buttonPadding, 0).contains(point))
        return hit;
    hit.message = message;
    MessageBody &body = layout.body(message);
    const QPoint inside = point - layout.messageOrigin(message);
    hit.button = body.buttonAt(inside, message);
    if (hit.button)
        return hit;
    for (const MessagePart part : {MessagePart::reasoning, MessagePart::text}) {
        if (!body.partRect(part).contains(inside))
            continue;
        hit.part = part;
        lookIntoText(*body.flow(part), inside - body.flowOrigin(part), hit);
    }
    return hit;
}

TextPosition TranscriptHit::nearest(TranscriptLayout &layout, int message, MessagePart part, QPoint point)
{
    MessageBody &body = layout.body(message);
    return body.flow(part)->positionAt(point - layout.messageOrigin(message) - body.flowOrigin(part));
}
