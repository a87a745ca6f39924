// What there is to know of a message beside its text.
#pragma once

#include <optional>

struct MessageFacts
{
    bool isUsers = false;
    bool isLast = false;
    bool isGenerating = false; // a reply in its conversation is
    bool loadsModel = false;   // which its model is loaded for
    bool isOpen = false;       // its reasoning is shown
    std::optional<double> tokensPerSecond;

    bool operator==(const MessageFacts &) const = default;

    bool isArriving() const { return isLast && isGenerating; }
};
