// A text laid out in rows of a column, of which only those in sight are measured; the heights of the others
// are guessed. Coordinates are device-independent pixels, relative to the flow's upper left corner.
#pragma once

#include "ui/chat/transcript/FlowLink.h"
#include "ui/chat/transcript/FlowRows.h"
#include "ui/chat/transcript/ParagraphLayout.h"
#include "ui/chat/transcript/TextPosition.h"
#include "ui/chat/transcript/TranscriptStyle.h"
#include "ui/widgets/HeightIndex.h"

#include <QRect>

#include <memory>
#include <optional>
#include <vector>

class TextFlow
{
public:
    enum class Form
    {
        plain, // every line as it stands, in one font
        markdown
    };

    // `style` and, for a plain text, its `font` must outlive the flow.
    TextFlow(Form form, const TranscriptStyle &style, const QFont &font);

    // Goes over to `text`, whose first `unchanged` characters are those of the text before; it must stay
    // where it is until the next update. Returns the first row that may have changed.
    int update(QStringView text, qsizetype unchanged);
    // Forgets every layout, since the width or the style has changed.
    void setWidth(int width);

    int width() const { return m_width; }
    // The width of the widest line of a plain text when it is broken at `limit`; looks at every row.
    int naturalWidth(int limit) const;
    int height() const { return m_heights.total(); }
    int rowCount() const { return m_rows.count(); }
    int rowAt(int y) const { return m_heights.at(y); }
    // With the gap above the row.
    QRect rowRect(int row) const;

    // Replaces the guesses between `top` and `bottom` by measures; returns whether any was wrong.
    bool measure(int top, int bottom);
    // Lets go of the layouts outside of `top` to `bottom`.
    void release(int top, int bottom);

    const FlowRows &rows() const { return m_rows; }
    const TranscriptStyle &style() const { return m_style; }
    // The gap above the row's own content.
    int gapAbove(int row) const;
    // Null where there is no text to lay out.
    RowLayout *layoutOf(int row);
    // Where the row's layout begins.
    QPoint layoutOrigin(int row);
    // The left edge and the baseline of a bullet, if the row has one.
    std::optional<QPointF> bulletPlace(int row);

    // Where code stands in its row: right of the padding and moved by what the block is scrolled.
    int codeLeft(int block) const { return TranscriptStyle::codePadding - m_rows.block(block).scrolled; }
    void setScrolled(int block, int x) { m_rows.block(block).scrolled = x; }
    int columns(int block) { return m_rows.columns(block); }

    // The nearest one.
    TextPosition positionAt(QPoint point);
    std::optional<FlowLink> linkAt(QPoint point);
    // What the link takes of each line; nothing when there is no such link.
    std::vector<QRect> linkRects(int row, int link);
    // A row of prose as it is laid out, but for what would pile up.
    StyledText styledText(int row) const;
    // What the row shows: code verbatim, a bullet item behind its bullet, nothing for what frames the code.
    QString shownText(int row) const;
    // What stands between the text of the row and that of the row before: a line break, or what a long line
    // has where it was broken.
    QString joint(int row) const;
    // How much of shownText() stands in front of the text that positions count in.
    qsizetype prefixLength(int row) const;

private:
    struct State
    {
        std::unique_ptr<RowLayout> layout;
        bool isMeasured = false;
    };

    struct Prose;

    Prose prose(int row) const;
    StyledText laidOutText(int row) const;
    bool isParagraph(int row) const;
    int guessedHeight(int row) const;
    int fixedHeight(int row) const;
    void measure(int row);
    ParagraphLayout *paragraph(int row);
    State &state(int row) { return m_states[static_cast<size_t>(row)]; }
    void keepLayout(int row, std::unique_ptr<RowLayout> layout);

    const Form m_form;
    const TranscriptStyle &m_style;
    const QFont &m_font;
    int m_width = 1;
    FlowRows m_rows;
    HeightIndex m_heights;
    std::vector<State> m_states;
    std::vector<int> m_live; // the rows that have a layout
};
