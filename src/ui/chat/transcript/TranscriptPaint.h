// What the parts of the transcript need to know when they paint themselves.
#pragma once

#include "ui/chat/transcript/TranscriptButton.h"
#include "ui/chat/transcript/TranscriptSelection.h"
#include "ui/chat/transcript/TranscriptStyle.h"

#include <QRect>
#include <QTextCharFormat>

#include <optional>

class QPainter;

struct TranscriptPaint
{
    QPainter &painter;
    const TranscriptStyle &style;
    QRect clip;
    TranscriptSelection selection;
    QTextCharFormat selectionLook;
    std::optional<TranscriptButton> hovered;
    std::optional<TranscriptButton> pressed;
    std::optional<TranscriptButton> focused;
    int spinnerAngle = 0; // in degrees

    ButtonLook look(const TranscriptButton &button) const
    {
        return {hovered == button, pressed == button, focused == button, false};
    }
};
