#include "ui/chat/transcript/TextFlow.h"

#include "core/chat/MarkdownLine.h"
#include "platform/text/OutsideText.h"
#include "ui/chat/transcript/CodeLineLayout.h"
#include "ui/chat/transcript/InlineMarkdown.h"

#include <QFontMetrics>
#include <QtMath>

#include <algorithm>

using namespace Qt::StringLiterals;
using Kind = FlowRows::Kind;

namespace {

constexpr QChar bullet = u'•';
// However far a line is inset, so much of the column's width is left to it.
constexpr int leastWidth = 120;

QStringView withoutReturn(QStringView line)
{
    return line.endsWith(u'\r') ? line.chopped(1) : line;
}

} // namespace

// A row of prose before it is laid out.
struct TextFlow::Prose
{
    MarkdownLine line;
    int inset;
    int beforeText; // the room that a bullet takes
    int textWidth;
};

TextFlow::TextFlow(Form form, const TranscriptStyle &style, const QFont &font)
    : m_form(form),
      m_style(style),
      m_font(font),
      m_rows(form == Form::markdown ? MarkdownLines::Fences::recognised : MarkdownLines::Fences::ignored)
{
}

int TextFlow::update(QStringView text, qsizetype unchanged)
{
    const int before = m_rows.count();
    const bool tailWasProse = before > 0 && m_rows.row(before - 1).kind == Kind::prose;
    const int first = m_rows.update(text, unchanged);
    if (first == before && m_rows.count() == before)
        return first;
    std::unique_ptr<RowLayout> tail;
    if (tailWasProse && first == before - 1)
        tail = std::move(state(first).layout);
    m_heights.truncate(first);
    m_states.resize(static_cast<size_t>(first));
    std::erase_if(m_live, [first](int row) { return row >= first; });
    for (int row = first; row < m_rows.count(); ++row) {
        const int fixed = fixedHeight(row);
        m_states.push_back({nullptr, fixed >= 0});
        m_heights.append(gapAbove(row) + (fixed >= 0 ? fixed : guessedHeight(row)));
    }
    if (tail && m_rows.row(first).kind == Kind::prose)
        keepLayout(first, std::move(tail));
    return first;
}

void TextFlow::setWidth(int width)
{
    m_width = std::max(1, width);
    m_live.clear();
    for (int row = 0; row < m_rows.count(); ++row) {
        const int fixed = fixedHeight(row);
        state(row) = {nullptr, fixed >= 0};
        m_heights.set(row, gapAbove(row) + (fixed >= 0 ? fixed : guessedHeight(row)));
    }
}

int TextFlow::naturalWidth(int limit) const
{
    int width = 0;
    for (int row = 0; row < m_rows.count(); ++row) {
        ParagraphLayout layout({m_font, m_style.codeInline, m_style.link}, limit);
        layout.setText(laidOutText(row));
        width = std::max(width, layout.naturalWidth());
    }
    return width;
}

QRect TextFlow::rowRect(int row) const
{
    return {0, m_heights.top(row), m_width, m_heights.height(row)};
}

int TextFlow::gapAbove(int row) const
{
    if (m_form == Form::plain || row == 0 || m_rows.continues(row))
        return 0;
    const Kind before = m_rows.row(row - 1).kind;
    switch (m_rows.row(row).kind) {
    case Kind::prose:
        return before == Kind::prose ? TranscriptStyle::lineGap : TranscriptStyle::blockGap;
    case Kind::codeHeader:
        return TranscriptStyle::blockGap;
    case Kind::code:
    case Kind::codeFooter:
        break;
    }
    return before == Kind::codeHeader ? TranscriptStyle::codePadding : 0;
}

// Negative when it takes a layout to know.
int TextFlow::fixedHeight(int row) const
{
    switch (m_rows.row(row).kind) {
    case Kind::prose:
        break;
    case Kind::codeHeader:
        return m_style.captionHeight + 2 * TranscriptStyle::codeHeaderPadding;
    case Kind::code:
        return m_style.codeLineHeight;
    case Kind::codeFooter:
        return TranscriptStyle::codePadding +
               (m_rows.isEmpty(m_rows.row(row).block) ? m_style.codeLineHeight : 0);
    }
    const bool isBlank = m_form == Form::markdown && withoutBlanks(m_rows.line(row)).isEmpty();
    return isBlank ? TranscriptStyle::blankLine : -1;
}

int TextFlow::guessedHeight(int row) const
{
    const double textWidth = static_cast<double>(m_rows.line(row).size()) * m_style.bodyCharacterWidth;
    return std::max(1, qCeil(textWidth / m_width)) * m_style.bodyLineHeight;
}

bool TextFlow::measure(int top, int bottom)
{
    if (m_rows.count() == 0)
        return false;
    bool changed = false;
    int row = m_heights.at(top);
    for (int y = m_heights.top(row); row < m_rows.count() && y < bottom; ++row) {
        if (!state(row).isMeasured) {
            const int before = m_heights.height(row);
            measure(row);
            changed |= m_heights.height(row) != before;
        }
        y += m_heights.height(row);
    }
    return changed;
}

void TextFlow::measure(int row)
{
    const int height = paragraph(row)->height();
    state(row).isMeasured = true;
    m_heights.set(row, gapAbove(row) + height);
}

void TextFlow::release(int top, int bottom)
{
    std::erase_if(m_live, [&](int row) {
        const int rowTop = m_heights.top(row);
        const bool isInSight = rowTop < bottom && rowTop + m_heights.height(row) > top;
        if (!isInSight)
            state(row).layout.reset();
        return !isInSight;
    });
}

void TextFlow::keepLayout(int row, std::unique_ptr<RowLayout> layout)
{
    if (!state(row).layout)
        m_live.push_back(row);
    state(row).layout = std::move(layout);
}

TextFlow::Prose TextFlow::prose(int row) const
{
    const QStringView line = withoutReturn(m_rows.line(row));
    if (m_form == Form::plain)
        return {{MarkdownLine::Style::body, 0, line}, 0, 0, m_width};
    Prose prose{MarkdownLine::read(line), 0, 0, 0};
    if (m_rows.continues(row)) {
        int first = row;
        while (m_rows.continues(first))
            --first;
        const MarkdownLine beginning = MarkdownLine::read(m_rows.line(first));
        prose.line = {beginning.style, beginning.inset, withoutBlanks(line)};
    }
    const int room = std::max(0, m_width - leastWidth);
    prose.inset = static_cast<int>(std::min<qsizetype>(prose.line.inset, room));
    if (prose.line.style == MarkdownLine::Style::bullet)
        prose.beforeText = QFontMetrics(m_style.body).horizontalAdvance(bullet) + TranscriptStyle::bulletGap;
    prose.textWidth = std::max(1, m_width - prose.inset - prose.beforeText);
    return prose;
}

StyledText TextFlow::styledText(int row) const
{
    const Prose prose = this->prose(row);
    return m_form == Form::plain ? StyledText{prose.line.text.toString(), {}, {}}
                                 : inlineMarkdown(prose.line.text);
}

StyledText TextFlow::laidOutText(int row) const
{
    StyledText text = styledText(row);
    text.text = withoutPiles(text.text);
    return text;
}

bool TextFlow::isParagraph(int row) const
{
    return m_rows.row(row).kind == Kind::prose && fixedHeight(row) < 0;
}

ParagraphLayout *TextFlow::paragraph(int row)
{
    const Prose prose = this->prose(row);
    // Only rows of prose come here, and those hold nothing else.
    auto *layout = static_cast<ParagraphLayout *>(state(row).layout.get());
    if (layout && state(row).isMeasured)
        return layout;
    const QFont &font = m_form == Form::plain ? m_font : m_style.font(prose.line.style);
    const ParagraphLayout::Style style{font, m_style.codeInline, m_style.link};
    if (!layout || layout->width() != prose.textWidth || layout->style() != style) {
        keepLayout(row, std::make_unique<ParagraphLayout>(style, prose.textWidth));
        layout = static_cast<ParagraphLayout *>(state(row).layout.get());
    }
    layout->setText(laidOutText(row));
    return layout;
}

RowLayout *TextFlow::layoutOf(int row)
{
    switch (m_rows.row(row).kind) {
    case Kind::prose:
        return fixedHeight(row) < 0 ? paragraph(row) : nullptr;
    case Kind::code:
        if (!state(row).layout)
            keepLayout(row, std::make_unique<CodeLineLayout>(m_rows.line(row), m_style));
        return state(row).layout.get();
    case Kind::codeHeader:
    case Kind::codeFooter:
        break;
    }
    return nullptr;
}

QPoint TextFlow::layoutOrigin(int row)
{
    const int y = m_heights.top(row) + gapAbove(row);
    if (m_rows.row(row).kind != Kind::prose)
        return {codeLeft(m_rows.row(row).block), y};
    if (fixedHeight(row) >= 0 || paragraph(row)->isRightToLeft())
        return {0, y};
    const Prose prose = this->prose(row);
    return {prose.inset + prose.beforeText, y};
}

std::optional<QPointF> TextFlow::bulletPlace(int row)
{
    if (m_form == Form::plain || m_rows.row(row).kind != Kind::prose)
        return std::nullopt;
    const Prose prose = this->prose(row);
    if (prose.line.style != MarkdownLine::Style::bullet || m_rows.continues(row))
        return std::nullopt;
    ParagraphLayout *const layout = paragraph(row);
    const int x = layout->isRightToLeft() ? prose.textWidth + TranscriptStyle::bulletGap : prose.inset;
    return QPointF(x, m_heights.top(row) + gapAbove(row) + layout->baseline());
}

TextPosition TextFlow::positionAt(QPoint point)
{
    if (m_rows.count() == 0)
        return {};
    if (point.y() < 0)
        return {};
    const int row = rowAt(point.y());
    if (point.y() >= height())
        return {row, shownText(row).size() - prefixLength(row)};
    RowLayout *const layout = layoutOf(row);
    return {row, layout ? layout->offsetAt(point - layoutOrigin(row)) : 0};
}

std::optional<FlowLink> TextFlow::linkAt(QPoint point)
{
    if (m_rows.count() == 0 || point.y() < 0 || point.y() >= height())
        return std::nullopt;
    const int row = rowAt(point.y());
    if (!isParagraph(row))
        return std::nullopt;
    ParagraphLayout &layout = *paragraph(row);
    const int index = layout.linkAt(point - layoutOrigin(row));
    return index < 0 ? std::nullopt : std::optional(FlowLink::of(layout.text(), row, index));
}

std::vector<QRect> TextFlow::linkRects(int row, int link)
{
    if (row >= m_rows.count() || !isParagraph(row))
        return {};
    std::vector<QRect> rects = paragraph(row)->linkRects(link);
    for (QRect &rect : rects)
        rect.translate(layoutOrigin(row));
    return rects;
}

qsizetype TextFlow::prefixLength(int row) const
{
    const bool mayHaveBullet =
        m_form == Form::markdown && m_rows.row(row).kind == Kind::prose && !m_rows.continues(row);
    return mayHaveBullet && prose(row).line.style == MarkdownLine::Style::bullet ? 2 : 0;
}

QString TextFlow::shownText(int row) const
{
    switch (m_rows.row(row).kind) {
    case Kind::prose:
        break;
    case Kind::code:
        return m_rows.line(row).toString();
    case Kind::codeHeader:
    case Kind::codeFooter:
        return {};
    }
    QString text = styledText(row).text;
    text.replace(QChar::LineSeparator, u'\n');
    return prefixLength(row) > 0 ? bullet + u' ' + text : text;
}

QString TextFlow::joint(int row) const
{
    if (!m_rows.continues(row))
        return QString(u'\n');
    if (m_form == Form::plain)
        return {};
    // The blanks at the ends of rows are not shown.
    const QStringView before = m_rows.line(row - 1);
    const QStringView line = m_rows.line(row);
    const qsizetype behind = withoutBlanksInFront(before).size() - withoutBlanks(before).size();
    const qsizetype inFront = line.size() - withoutBlanksInFront(line).size();
    return before.last(behind).toString() + line.first(inFront == line.size() ? 0 : inFront).toString();
}
