#include "ui/chat/transcript/ParagraphLayout.h"

#include <QPainter>
#include <QTextOption>
#include <QUrl>
#include <QtMath>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Characters; some dozen lines of an ordinary column.
constexpr qsizetype pieceSize = 2000;
// How far behind a place a change can still alter the line breaks before it.
constexpr qsizetype lookAhead = 4;

// Where run `a` and run `b`, at the same place of two lists, begin to differ.
qsizetype firstDifference(const StyledText::Run &a, const StyledText::Run &b)
{
    if (a.start == b.start && a.emphases == b.emphases && a.link == b.link)
        return a.start + std::min(a.length, b.length);
    return std::min(a.start, b.start);
}

// A code span in a heading is as large and as bold as the heading.
QFont inSizeOf(const QFont &text, QFont code)
{
    if (text.pointSizeF() > 0)
        code.setPointSizeF(text.pointSizeF());
    else
        code.setPixelSize(text.pixelSize());
    code.setBold(text.bold());
    return code;
}

void breakIntoLines(QTextLayout &layout, int width)
{
    int y = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLeadingIncluded(true);
        line.setLineWidth(width);
        line.setPosition(QPointF(0, y));
        y += qCeil(line.height());
    }
    layout.endLayout();
}

int bottom(const QTextLine &line)
{
    return qRound(line.y()) + qCeil(line.height());
}

QTextLine lineAt(const QTextLayout &layout, int y)
{
    int index = 0;
    while (index + 1 < layout.lineCount() && bottom(layout.lineAt(index)) <= y)
        ++index;
    return layout.lineAt(index);
}

// The place of the line's characters from `from` to `to`.
QRect part(const QTextLine &line, int from, int to)
{
    const int first = std::max(from, line.textStart());
    const int behind = std::min(to, line.textStart() + line.textLength());
    if (behind <= first)
        return {};
    const auto [left, right] = std::minmax({line.cursorToX(first), line.cursorToX(behind)});
    return QRectF(left, line.y(), right - left, line.height()).toAlignedRect();
}

} // namespace

bool ParagraphLayout::isOpenable(const QString &target)
{
    const QUrl url(target, QUrl::StrictMode);
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == "http"_L1 || scheme == "https"_L1 || scheme == "mailto"_L1);
}

void ParagraphLayout::setText(StyledText text)
{
    const bool turns = text.text.isRightToLeft() != m_isRightToLeft;
    const qsizetype unchanged = turns ? 0 : firstDifference(text);
    const auto isTouched = [unchanged](const Piece &piece) {
        return piece.start + pieceSize + lookAhead > unchanged;
    };
    m_pieces.erase(std::find_if(m_pieces.begin(), m_pieces.end(), isTouched), m_pieces.end());
    m_isRightToLeft = text.text.isRightToLeft();
    m_text = std::move(text);
    layOut();
}

qsizetype ParagraphLayout::firstDifference(const StyledText &text) const
{
    const auto inText =
        std::mismatch(m_text.text.cbegin(), m_text.text.cend(), text.text.cbegin(), text.text.cend());
    qsizetype first = inText.first - m_text.text.cbegin();
    const auto [before, now] =
        std::mismatch(m_text.runs.begin(), m_text.runs.end(), text.runs.begin(), text.runs.end());
    if (before != m_text.runs.end() && now != text.runs.end())
        first = std::min(first, ::firstDifference(*before, *now));
    else if (before != m_text.runs.end())
        first = std::min(first, before->start);
    else if (now != text.runs.end())
        first = std::min(first, now->start);
    const bool linksContinue = text.links.size() >= m_text.links.size() &&
                               std::equal(m_text.links.cbegin(), m_text.links.cend(), text.links.cbegin());
    return linksContinue ? first : 0;
}

void ParagraphLayout::layOut()
{
    qsizetype start = 0;
    int top = 0;
    if (!m_pieces.empty()) {
        start = m_pieces.back().start + m_pieces.back().length;
        top = m_pieces.back().top + m_pieces.back().height;
    }
    do {
        m_pieces.push_back(makePiece(start, top));
        start += m_pieces.back().length;
        top += m_pieces.back().height;
    } while (start < m_text.text.size());
}

ParagraphLayout::Piece ParagraphLayout::makePiece(qsizetype start, int top) const
{
    const qsizetype length = std::min(pieceSize, m_text.text.size() - start);
    std::unique_ptr<QTextLayout> layout = layOut(start, length);
    const QTextLine last = layout->lineAt(layout->lineCount() - 1);
    const bool endsText = start + length == m_text.text.size();
    if (endsText || layout->lineCount() == 1)
        return {start, length, top, bottom(last), std::move(layout)};
    // What follows may alter where the last line ends, but not where it begins.
    return {start, last.textStart(), top, qRound(last.y()), nullptr};
}

std::unique_ptr<QTextLayout> ParagraphLayout::layOut(qsizetype start, qsizetype length) const
{
    auto layout = std::make_unique<QTextLayout>(m_text.text.sliced(start, length), m_style.font);
    QTextOption option(m_isRightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(m_isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    layout->setFormats(formats(start, length));
    layout->setCacheEnabled(true);
    breakIntoLines(*layout, m_width);
    return layout;
}

QTextLayout &ParagraphLayout::layoutOf(Piece &piece) const
{
    if (!piece.layout)
        piece.layout = layOut(piece.start, piece.length);
    return *piece.layout;
}

ParagraphLayout::Piece &ParagraphLayout::pieceAt(int y)
{
    const auto isAbove = [](int place, const Piece &piece) { return place < piece.top; };
    auto behind = std::upper_bound(m_pieces.begin(), m_pieces.end(), y, isAbove);
    return behind == m_pieces.begin() ? *behind : *(behind - 1);
}

QList<QTextLayout::FormatRange> ParagraphLayout::formats(qsizetype start, qsizetype length) const
{
    QList<QTextLayout::FormatRange> ranges;
    const auto endsBefore = [](const StyledText::Run &run, qsizetype place) {
        return run.start + run.length <= place;
    };
    auto run = std::lower_bound(m_text.runs.begin(), m_text.runs.end(), start, endsBefore);
    for (; run != m_text.runs.end() && run->start < start + length; ++run) {
        const qsizetype from = std::max(run->start, start);
        const qsizetype to = std::min(run->start + run->length, start + length);
        ranges.append({static_cast<int>(from - start), static_cast<int>(to - from), format(*run)});
    }
    return ranges;
}

QTextCharFormat ParagraphLayout::format(const StyledText::Run &run) const
{
    QFont font =
        run.emphases.testFlag(StyledText::code) ? inSizeOf(m_style.font, m_style.codeFont) : m_style.font;
    if (run.emphases.testFlag(StyledText::emphasis))
        font.setItalic(true);
    if (run.emphases.testFlag(StyledText::strong))
        font.setBold(true);
    font.setStrikeOut(run.emphases.testFlag(StyledText::strikethrough));
    font.setUnderline(run.link >= 0);
    QTextCharFormat format;
    format.setFont(font);
    if (run.link >= 0 && isOpenable(m_text.links[run.link]))
        format.setForeground(m_style.link);
    return format;
}

int ParagraphLayout::height() const
{
    return m_pieces.empty() ? 0 : m_pieces.back().top + m_pieces.back().height;
}

int ParagraphLayout::naturalWidth()
{
    qreal width = 0;
    for (Piece &piece : m_pieces) {
        const QTextLayout &layout = layoutOf(piece);
        for (int line = 0; line < layout.lineCount(); ++line)
            width = std::max(width, layout.lineAt(line).naturalTextWidth());
    }
    return qCeil(width);
}

double ParagraphLayout::baseline()
{
    return layoutOf(m_pieces.front()).lineAt(0).ascent();
}

void ParagraphLayout::paint(QPainter &painter, QPoint origin, const QRect &clip, const Selected &selected)
{
    for (Piece &piece : m_pieces) {
        const int top = origin.y() + piece.top;
        if (top > clip.bottom() || top + piece.height <= clip.top()) {
            piece.layout.reset();
            continue;
        }
        QList<QTextLayout::FormatRange> selections;
        const qsizetype from = std::max(selected.from - piece.start, qsizetype{0});
        const qsizetype to = std::min(selected.to - piece.start, piece.length);
        if (to > from)
            selections.append({static_cast<int>(from), static_cast<int>(to - from), selected.look});
        layoutOf(piece).draw(&painter, QPointF(origin.x(), top), selections, clip);
    }
}

qsizetype ParagraphLayout::offsetAt(QPoint point)
{
    Piece &piece = pieceAt(point.y());
    const QTextLine line = lineAt(layoutOf(piece), point.y() - piece.top);
    return piece.start + line.xToCursor(point.x());
}

int ParagraphLayout::linkAt(QPoint point)
{
    Piece &piece = pieceAt(point.y());
    const QTextLine line = lineAt(layoutOf(piece), point.y() - piece.top);
    if (!line.naturalTextRect().contains(QPointF(point) - QPointF(0, piece.top)))
        return -1;
    const qsizetype offset = piece.start + line.xToCursor(point.x(), QTextLine::CursorOnCharacter);
    for (const StyledText::Run &run : m_text.runs) {
        if (run.link >= 0 && offset >= run.start && offset < run.start + run.length)
            return static_cast<int>(run.link);
    }
    return -1;
}

std::vector<QRect> ParagraphLayout::linkRects(int link)
{
    std::vector<QRect> rects;
    const auto isPart = [link](const StyledText::Run &run) { return run.link == link; };
    const auto first = std::find_if(m_text.runs.begin(), m_text.runs.end(), isPart);
    if (first == m_text.runs.end())
        return rects;
    const auto last = std::find_if(m_text.runs.rbegin(), m_text.runs.rend(), isPart);
    for (Piece &piece : m_pieces) {
        const auto from = static_cast<int>(first->start - piece.start);
        const auto to = static_cast<int>(last->start + last->length - piece.start);
        if (to <= 0 || from >= piece.length)
            continue;
        const QTextLayout &layout = layoutOf(piece);
        for (int i = 0; i < layout.lineCount(); ++i) {
            if (const QRect rect = part(layout.lineAt(i), from, to); !rect.isEmpty())
                rects.push_back(rect.translated(0, piece.top));
        }
    }
    return rects;
}
