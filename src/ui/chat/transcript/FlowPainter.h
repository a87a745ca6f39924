// Paints the rows of a flow that are in sight, with the boxes of its code blocks.
#pragma once

#include "ui/chat/transcript/TranscriptPaint.h"

#include <QPoint>

class TextFlow;

class FlowPainter
{
public:
    // `flow` begins at `origin` and is `part` of the message with this index.
    FlowPainter(const TranscriptPaint &paint, TextFlow &flow, QPoint origin, int message, MessagePart part);

    void paint();

private:
    void paintBlock(int block);
    void paintRow(int row);
    void paintLinkFocus(int row);
    void paintHeader(int block);
    void paintHandle(int block);

    const TranscriptPaint &m_paint;
    TextFlow &m_flow;
    const QPoint m_origin;
    const int m_message;
    const std::optional<TextRange> m_selected;
};
