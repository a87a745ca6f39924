#include "ui/chat/transcript/FlowRows.h"

#include "ui/chat/transcript/CodeLineLayout.h"

#include <algorithm>

using LineKind = MarkdownLines::Kind;

namespace {

// Code units, and lines. What is laid out in one turn of the event loop, and what is kept for each line, is
// bounded by them; no reply and no text that anyone would read comes near.
constexpr qsizetype longestText = 500'000;
constexpr size_t mostLines = 50'000;
constexpr qsizetype longestLine = 4000;

} // namespace

FlowRows::FlowRows(MarkdownLines::Fences fences) : m_lines(fences, {longestLine, mostLines}) {}

int FlowRows::update(QStringView text, qsizetype unchanged)
{
    m_text = text.first(std::min(text.size(), longestText));
    const int first = static_cast<int>(m_lines.update(m_text, std::min(unchanged, m_text.size())));
    m_isCut = m_lines.isCut() || m_text.size() < text.size();
    const int lines = static_cast<int>(m_lines.lines().size());
    if (first == lines)
        return count();
    const qsizetype measuredTo = m_lines.lines()[static_cast<size_t>(first)].start + m_tail.measured;
    if (m_tail.row > first || (m_tail.row == first && measuredTo > unchanged))
        m_tail = {};
    truncate(first);
    for (int line = first; line < lines; ++line)
        append(line);
    if (m_lines.endsInCode()) {
        m_blocks.back().footer = lines;
        m_rows.push_back({Kind::codeFooter, blockCount() - 1});
    }
    return first;
}

void FlowRows::truncate(int rows)
{
    m_rows.resize(std::min(m_rows.size(), static_cast<size_t>(rows)));
    while (!m_blocks.empty() && m_blocks.back().header >= rows)
        m_blocks.pop_back();
    if (!m_blocks.empty() && m_blocks.back().measuredTo > rows) {
        m_blocks.back().columns = 0;
        m_blocks.back().measuredTo = 0;
    }
}

void FlowRows::append(int line)
{
    switch (m_lines.lines()[static_cast<size_t>(line)].kind) {
    case LineKind::prose:
        m_rows.push_back({Kind::prose, -1});
        break;
    case LineKind::openingFence:
        m_blocks.push_back({line, line});
        m_rows.push_back({Kind::codeHeader, blockCount() - 1});
        break;
    case LineKind::code:
        m_rows.push_back({Kind::code, blockCount() - 1});
        break;
    case LineKind::closingFence:
        m_blocks.back().footer = line;
        m_rows.push_back({Kind::codeFooter, blockCount() - 1});
        break;
    }
}

QStringView FlowRows::line(int row) const
{
    const auto &lines = m_lines.lines();
    if (row >= static_cast<int>(lines.size()))
        return {};
    const MarkdownLines::Line &line = lines[static_cast<size_t>(row)];
    return m_text.sliced(line.start, line.length);
}

bool FlowRows::continues(int row) const
{
    const auto &lines = m_lines.lines();
    return row < static_cast<int>(lines.size()) && lines[static_cast<size_t>(row)].continues;
}

bool FlowRows::isEmpty(int block) const
{
    return this->block(block).footer == this->block(block).header + 1;
}

QStringView FlowRows::code(int block) const
{
    if (isEmpty(block))
        return {};
    const auto &lines = m_lines.lines();
    const MarkdownLines::Line &first = lines[static_cast<size_t>(this->block(block).header) + 1];
    const MarkdownLines::Line &last = lines[static_cast<size_t>(this->block(block).footer) - 1];
    return m_text.sliced(first.start, last.start + last.length - first.start);
}

int FlowRows::columns(int block)
{
    CodeBlock &measured = this->block(block);
    // The text's last line may still grow.
    const int settled = std::min(measured.footer, static_cast<int>(m_lines.lines().size()) - 1);
    for (int row = std::max(measured.measuredTo, measured.header + 1); row < settled; ++row)
        measured.columns = std::max(measured.columns, CodeLineLayout::columns(line(row)));
    measured.measuredTo = settled;
    if (settled == measured.footer || settled == measured.header)
        return measured.columns;
    if (m_tail.row != settled)
        m_tail = {settled};
    m_tail.columns = CodeLineLayout::columns(line(settled).sliced(m_tail.measured), m_tail.columns);
    m_tail.measured = line(settled).size();
    return std::max(measured.columns, m_tail.columns);
}
