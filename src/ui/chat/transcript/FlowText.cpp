#include "ui/chat/transcript/FlowText.h"

#include "ui/chat/transcript/TextFlow.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace {

qsizetype endOf(const TextFlow &flow, int row)
{
    return flow.shownText(row).size() - flow.prefixLength(row);
}

bool holdsText(FlowRows::Kind kind)
{
    return kind == FlowRows::Kind::prose || kind == FlowRows::Kind::code;
}

// The part of a row's text that lies in `range`; what stands in front of the text belongs to its beginning.
QString selectedText(const TextFlow &flow, int row, const TextRange &range)
{
    const QString shown = flow.shownText(row);
    const qsizetype prefix = flow.prefixLength(row);
    const bool fromItsStart = row > range.from.row || range.from.offset == 0;
    const bool toItsEnd = row < range.to.row;
    if (!toItsEnd && range.to.offset == 0)
        return {};
    const qsizetype from = fromItsStart ? 0 : std::min(prefix + range.from.offset, shown.size());
    const qsizetype to = toItsEnd ? shown.size() : std::min(prefix + range.to.offset, shown.size());
    return shown.sliced(from, std::max(to - from, qsizetype{0}));
}

} // namespace

TextRange wholeText(const TextFlow &flow)
{
    const int last = flow.rowCount() - 1;
    return {{0, 0}, {std::max(0, last), last < 0 ? 0 : endOf(flow, last)}};
}

TextRange wordAt(const TextFlow &flow, TextPosition position)
{
    const QString text = flow.shownText(position.row).sliced(flow.prefixLength(position.row));
    const qsizetype offset = std::min(position.offset, text.size());
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    finder.setPosition(offset);
    const qsizetype from =
        finder.isAtBoundary() && offset < text.size() ? offset : finder.toPreviousBoundary();
    finder.setPosition(offset);
    const qsizetype to = finder.toNextBoundary();
    return {{position.row, std::max(from, qsizetype{0})}, {position.row, to < 0 ? text.size() : to}};
}

TextRange rowAround(const TextFlow &flow, TextPosition position)
{
    return {{position.row, 0}, {position.row, endOf(flow, position.row)}};
}

QString selectedText(const TextFlow &flow, const TextRange &range)
{
    QString text;
    bool isFirst = true;
    const int last = std::min(range.to.row, flow.rowCount() - 1);
    for (int row = range.from.row; row <= last; ++row) {
        if (!holdsText(flow.rows().row(row).kind))
            continue;
        if (!isFirst)
            text += flow.joint(row);
        isFirst = false;
        text += selectedText(flow, row, range);
    }
    return text;
}
