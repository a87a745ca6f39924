#include "core/chat/MarkdownLines.h"

#include "core/chat/MarkdownLine.h"

#include <algorithm>

namespace {

constexpr QStringView fence = u"```";

MarkdownLines::Kind kindOf(QStringView line, bool inside)
{
    const bool isFence = withoutBlanksInFront(line).startsWith(fence);
    if (inside)
        return isFence ? MarkdownLines::Kind::closingFence : MarkdownLines::Kind::code;
    return isFence ? MarkdownLines::Kind::openingFence : MarkdownLines::Kind::prose;
}

} // namespace

QStringView MarkdownLines::language(QStringView line)
{
    return withoutBlanks(withoutBlanks(line).sliced(fence.size()));
}

bool MarkdownLines::isInside(size_t line) const
{
    if (line == 0)
        return false;
    const Kind before = m_lines[line - 1].kind;
    return before == Kind::openingFence || before == Kind::code;
}

qsizetype MarkdownLines::update(QStringView text, qsizetype unchanged)
{
    const auto startsBehind = [](qsizetype position, const Line &line) { return position < line.start; };
    if (!m_lines.empty() && unchanged == text.size() && unchanged == m_size)
        return static_cast<qsizetype>(m_lines.size());
    auto first = std::upper_bound(m_lines.begin(), m_lines.end(), unchanged, startsBehind);
    if (first != m_lines.begin())
        --first;
    qsizetype start = first == m_lines.end() ? 0 : first->start;
    const qsizetype firstChanged = first - m_lines.begin();
    m_lines.erase(first, m_lines.end());
    m_size = text.size();

    bool inside = isInside(m_lines.size());
    // There is no newline between the start of the line and what is new.
    qsizetype searchFrom = std::max(start, unchanged);
    while (true) {
        const qsizetype newline = text.indexOf(u'\n', searchFrom);
        const qsizetype end = newline < 0 ? text.size() : newline;
        const Kind kind =
            m_fences == Fences::ignored ? Kind::prose : kindOf(text.sliced(start, end - start), inside);
        m_lines.push_back({start, end - start, kind});
        if (newline < 0)
            return firstChanged;
        inside = kind == Kind::openingFence || kind == Kind::code;
        start = searchFrom = newline + 1;
    }
}
