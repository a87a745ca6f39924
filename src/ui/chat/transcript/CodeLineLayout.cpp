#include "ui/chat/transcript/CodeLineLayout.h"

#include "platform/text/OutsideText.h"

#include <QPainter>
#include <QTextOption>
#include <QtMath>

#include <algorithm>

namespace {

constexpr int tabColumns = 4;
// Characters.
constexpr qsizetype longLine = 2000;
constexpr qsizetype segmentSize = 500;

// The column behind `c` when it stands at `column`. What is neither Latin, Greek nor Cyrillic may come from
// another font and be wider; it is given the most that any script takes.
int columnBehind(QChar c, int column)
{
    if (c == u'\t')
        return (column / tabColumns + 1) * tabColumns;
    return column + (c.unicode() < 0x0530 ? 1 : 2);
}

} // namespace

CodeLineLayout::CodeLineLayout(QStringView line, const TranscriptStyle &style)
    : m_style(style), m_line(line.toString())
{
    split();
}

int CodeLineLayout::columns(QStringView text, int start)
{
    int column = start;
    for (const QChar c : text)
        column = columnBehind(c, column);
    return column;
}

void CodeLineLayout::split()
{
    if (m_line.size() <= longLine) {
        m_segments.push_back({0, m_line.size(), 0});
        return;
    }
    int column = 0;
    for (qsizetype i = 0; i < m_line.size(); ++i) {
        const QChar c = m_line.at(i);
        if (m_segments.empty() || (i - m_segments.back().start >= segmentSize && !c.isLowSurrogate()))
            m_segments.push_back({i, 0, qRound(column * m_style.codeColumnWidth)});
        ++m_segments.back().length;
        column = columnBehind(c, column);
    }
}

size_t CodeLineLayout::segmentAt(int x) const
{
    const auto isBefore = [](int place, const Segment &segment) { return place < segment.x; };
    const auto behind = std::upper_bound(m_segments.begin() + 1, m_segments.end(), x, isBefore);
    return static_cast<size_t>(behind - m_segments.begin()) - 1;
}

QTextLayout &CodeLineLayout::layoutOf(size_t segment)
{
    std::unique_ptr<QTextLayout> &layout = m_layouts[segment];
    if (layout)
        return *layout;
    const Segment &place = m_segments[segment];
    layout =
        std::make_unique<QTextLayout>(withoutPiles(m_line.sliced(place.start, place.length)), m_style.code);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(Qt::LeftToRight);
    option.setTabStopDistance(tabColumns * m_style.codeColumnWidth);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    layout->createLine().setLineWidth(1e6);
    layout->endLayout();
    return *layout;
}

void CodeLineLayout::paint(QPainter &painter, QPoint origin, const QRect &clip, const Selected &selected)
{
    const size_t first = segmentAt(clip.left() - origin.x());
    const size_t last = segmentAt(clip.right() - origin.x());
    std::erase_if(m_layouts, [=](const auto &entry) { return entry.first < first || entry.first > last; });
    for (size_t i = first; i <= last; ++i) {
        const Segment &segment = m_segments[i];
        QList<QTextLayout::FormatRange> selections;
        const qsizetype from = std::max(selected.from - segment.start, qsizetype{0});
        const qsizetype to = std::min(selected.to - segment.start, segment.length);
        if (to > from)
            selections.append({static_cast<int>(from), static_cast<int>(to - from), selected.look});
        layoutOf(i).draw(&painter, origin + QPoint(segment.x, 0), selections);
    }
}

qsizetype CodeLineLayout::offsetAt(QPoint point)
{
    const size_t segment = segmentAt(point.x());
    const QTextLine line = layoutOf(segment).lineAt(0);
    return m_segments[segment].start + line.xToCursor(point.x() - m_segments[segment].x);
}
