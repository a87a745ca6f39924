// The parts of which a message consists, and the rows of them.
#pragma once

#include <utility>

enum class MessagePart
{
    disclosure,
    reasoning,
    text,   // the user's, or the answer
    notice, // that some of the text does not show
    waiting,
    footer
};

struct MessageRow
{
    MessagePart part = MessagePart::text;
    int row = 0; // of the flow that the part is; 0 for what is none

    auto operator<=>(const MessageRow &) const = default;
};
