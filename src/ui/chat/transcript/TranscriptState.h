// What the transcript shows and what the user has done to it.
#pragma once

#include "ui/chat/transcript/TranscriptButton.h"
#include "ui/chat/transcript/TranscriptLayout.h"
#include "ui/chat/transcript/TranscriptSelection.h"
#include "ui/chat/transcript/TranscriptStyle.h"

#include <optional>

struct TranscriptState
{
    explicit TranscriptState(const QPalette &palette) : style(palette), layout(style) {}

    TranscriptStyle style;
    TranscriptLayout layout;
    TranscriptSelection selection;
    std::optional<TranscriptButton> hovered;
    std::optional<TranscriptButton> pressed;
    std::optional<TranscriptButton> focused;

    // The text that is selected, as it is shown.
    QString selectedText();
    // Selects the whole of the text around the selection, or else of the message whose button has the focus,
    // or else of the last one.
    void selectAll();
    // Forgets what refers to messages from this one on.
    void forgetFrom(int message);
    // The button behind or in front of the one that has the focus, or where nothing has it, the first one in
    // sight or the last one of all.
    std::optional<TranscriptButton> neighbour(bool isNext);
};
