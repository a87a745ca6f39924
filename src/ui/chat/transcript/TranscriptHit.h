// What is to be found at a place of the transcript.
#pragma once

#include "ui/chat/transcript/FlowLink.h"
#include "ui/chat/transcript/MessagePart.h"
#include "ui/chat/transcript/TextPosition.h"
#include "ui/chat/transcript/TranscriptButton.h"

#include <QPoint>

#include <optional>

class TranscriptLayout;

struct TranscriptHit
{
    int message = -1; // its index; negative beside every message
    std::optional<TranscriptButton> button;
    std::optional<MessagePart> part; // of which text is there
    std::optional<int> block;        // the code block there
    bool isHandle = false;           // it is the code block's scroll indicator
    std::optional<FlowLink> link;

    // `point` in the viewport's coordinates.
    static TranscriptHit at(TranscriptLayout &layout, QPoint point);

    // The place in the text that is nearest to `point`.
    static TextPosition nearest(TranscriptLayout &layout, int message, MessagePart part, QPoint point);
};
