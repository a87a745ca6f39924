// What is selected in the transcript: a stretch of one part of one message.
#pragma once

#include "ui/chat/transcript/MessagePart.h"
#include "ui/chat/transcript/TextPosition.h"

#include <algorithm>
#include <optional>

struct TranscriptSelection
{
    int message = -1; // its index; negative when nothing is selected
    MessagePart part = MessagePart::text;
    TextPosition anchor; // where it was begun
    TextPosition cursor;

    bool operator==(const TranscriptSelection &) const = default;

    TextRange range() const { return {std::min(anchor, cursor), std::max(anchor, cursor)}; }
    bool isEmpty() const { return message < 0 || anchor == cursor; }
    std::optional<TextRange> in(int index, MessagePart place) const
    {
        return !isEmpty() && index == message && place == part ? std::optional(range()) : std::nullopt;
    }
};
