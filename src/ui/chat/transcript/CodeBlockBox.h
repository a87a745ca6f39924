// Where the parts of a code block stand in its flow, and how far its code can be scrolled. Coordinates are
// the flow's.
#pragma once

#include <QRect>

class TextFlow;

class CodeBlockBox
{
public:
    // The number of a code block of `flow`, which must outlive the box.
    CodeBlockBox(TextFlow &flow, int block) : m_flow(flow), m_block(block) {}

    QRect rect() const;
    QRect header() const;
    QRect copyButton() const;
    // Where code shows, between the padding on its left and right.
    QRect code() const;

    // How far the code can be scrolled to the right, in device-independent pixels.
    int scrollRange() const;
    // Keeps `x` within the range; returns whether anything changed.
    bool scrollTo(int x);
    int scrolled() const;
    // The part of the scroll indicator that stands for what is in sight; empty when nothing is out of sight.
    QRect handle() const;
    // How far to scroll when the handle is moved by one pixel.
    double scrollPerPixel() const;

private:
    int contentWidth() const;

    TextFlow &m_flow;
    const int m_block;
};
