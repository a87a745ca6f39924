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

// How much of a line that is longer than `most` stands in front of the break: up to behind a blank where
// there is one near. What follows the break has no say.
qsizetype lengthBeforeBreak(QStringView line, qsizetype most)
{
    constexpr qsizetype near = 500;
    for (qsizetype length = most; length > std::max(most - near, qsizetype{0}); --length) {
        if (line.at(length - 1) == u' ')
            return length;
    }
    return line.at(most).isLowSurrogate() ? most - 1 : most;
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
    // Where a line was broken depends on the character behind the break.
    if (first != m_lines.begin() && (--first)->continues && first->start == unchanged)
        --first;
    qsizetype start = first == m_lines.end() ? 0 : first->start;
    bool continues = first != m_lines.end() && first->continues;
    const qsizetype firstChanged = first - m_lines.begin();
    m_lines.erase(first, m_lines.end());
    m_size = text.size();
    m_isCut = false;

    bool inside = isInside(m_lines.size());
    // There is no newline between the start of the line and what is new.
    qsizetype searchFrom = std::max(start, unchanged);
    while (true) {
        const qsizetype newline = text.indexOf(u'\n', searchFrom);
        const qsizetype end = newline < 0 ? text.size() : newline;
        const Kind kind = m_fences == Fences::ignored || continues
                              ? Kind::prose
                              : kindOf(text.sliced(start, end - start), inside);
        add(text, {start, end - start, kind, continues});
        if (newline < 0 || m_isCut)
            return firstChanged;
        inside = kind == Kind::openingFence || kind == Kind::code;
        start = searchFrom = newline + 1;
        continues = false;
    }
}

void MarkdownLines::add(QStringView text, const Line &line)
{
    Line rest = line;
    while (rest.kind == Kind::prose && rest.length > m_limits.lineLength && m_lines.size() < m_limits.lines) {
        const qsizetype length = lengthBeforeBreak(text.sliced(rest.start, rest.length), m_limits.lineLength);
        m_lines.push_back({rest.start, length, rest.kind, rest.continues});
        rest = {rest.start + length, rest.length - length, rest.kind, true};
    }
    m_isCut = m_lines.size() == m_limits.lines;
    if (!m_isCut)
        m_lines.push_back(rest);
}
