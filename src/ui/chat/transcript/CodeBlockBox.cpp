#include "ui/chat/transcript/CodeBlockBox.h"

#include "ui/chat/transcript/TextFlow.h"
#include "ui/chat/transcript/TranscriptButton.h"

#include <QtMath>

#include <algorithm>

namespace {

constexpr int handleThickness = 6;
constexpr int leastHandle = 24;

} // namespace

QRect CodeBlockBox::rect() const
{
    const FlowRows::CodeBlock &block = m_flow.rows().block(m_block);
    const int top = header().top();
    return {0, top, m_flow.width(), m_flow.rowRect(block.footer).bottom() + 1 - top};
}

QRect CodeBlockBox::header() const
{
    const int row = m_flow.rows().block(m_block).header;
    return m_flow.rowRect(row).adjusted(0, m_flow.gapAbove(row), 0, 0);
}

QRect CodeBlockBox::copyButton() const
{
    const QRect row = header();
    QRect button(QPoint(), buttonSize(TranscriptButton::copyCode, m_flow.style()));
    // The label, not its surroundings, ends at the padding.
    button.moveRight(row.right() - TranscriptStyle::codePadding + buttonPadding);
    button.moveTop(row.center().y() - button.height() / 2);
    return button;
}

QRect CodeBlockBox::code() const
{
    const QRect whole = rect();
    return whole.adjusted(TranscriptStyle::codePadding, header().height(), -TranscriptStyle::codePadding, 0);
}

int CodeBlockBox::contentWidth() const
{
    return qCeil(m_flow.columns(m_block) * m_flow.style().codeColumnWidth);
}

int CodeBlockBox::scrollRange() const
{
    return std::max(0, contentWidth() - code().width());
}

int CodeBlockBox::scrolled() const
{
    return m_flow.rows().block(m_block).scrolled;
}

bool CodeBlockBox::scrollTo(int x)
{
    const int within = std::clamp(x, 0, scrollRange());
    if (within == scrolled())
        return false;
    m_flow.setScrolled(m_block, within);
    return true;
}

QRect CodeBlockBox::handle() const
{
    const int range = scrollRange();
    if (range == 0)
        return {};
    const QRect track = code();
    const double inSight = static_cast<double>(track.width()) / contentWidth();
    const int length = std::max(leastHandle, qRound(track.width() * inSight));
    const int x = track.left() + qRound(static_cast<double>(scrolled()) / range * (track.width() - length));
    return {x, rect().bottom() + 1 - handleThickness - 2, length, handleThickness};
}

double CodeBlockBox::scrollPerPixel() const
{
    const int free = code().width() - handle().width();
    return free > 0 ? static_cast<double>(scrollRange()) / free : 0;
}
