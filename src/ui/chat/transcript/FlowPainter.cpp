#include "ui/chat/transcript/FlowPainter.h"

#include "ui/chat/transcript/CodeBlockBox.h"
#include "ui/chat/transcript/TextFlow.h"

#include <QCoreApplication>
#include <QPainter>

#include <limits>

using Kind = FlowRows::Kind;

namespace {

constexpr qsizetype longestLabel = 200;
constexpr int focusWidth = 2;
constexpr double focusRadius = 3;

RowLayout::Selected selectedIn(int row, const std::optional<TextRange> &range, const QTextCharFormat &look)
{
    if (!range || row < range->from.row || row > range->to.row)
        return {};
    const qsizetype from = row == range->from.row ? range->from.offset : 0;
    const qsizetype to = row == range->to.row ? range->to.offset : std::numeric_limits<int>::max();
    return {from, to, look};
}

} // namespace

FlowPainter::FlowPainter(const TranscriptPaint &paint, TextFlow &flow, QPoint origin, int message,
                         MessagePart part)
    : m_paint(paint),
      m_flow(flow),
      m_origin(origin),
      m_message(message),
      m_selected(paint.selection.in(message, part))
{
}

void FlowPainter::paint()
{
    if (m_flow.rowCount() == 0)
        return;
    const int first = m_flow.rowAt(m_paint.clip.top() - m_origin.y());
    int lastBlock = -1;
    for (int row = first; row < m_flow.rowCount(); ++row) {
        if (m_flow.rowRect(row).top() + m_origin.y() > m_paint.clip.bottom())
            break;
        const int block = m_flow.rows().row(row).block;
        if (block > lastBlock)
            paintBlock(lastBlock = block);
        paintRow(row);
    }
}

void FlowPainter::paintBlock(int block)
{
    const CodeBlockBox box(m_flow, block);
    QPainter &painter = m_paint.painter;
    const QRectF whole = box.rect().translated(m_origin);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_paint.style.faint(0.08));
    painter.drawRoundedRect(whole, TranscriptStyle::codeRadius, TranscriptStyle::codeRadius);
    painter.setClipRect(box.header().translated(m_origin), Qt::IntersectClip);
    painter.setBrush(m_paint.style.faint(0.15));
    painter.drawRoundedRect(whole, TranscriptStyle::codeRadius, TranscriptStyle::codeRadius);
    painter.restore();
}

void FlowPainter::paintRow(int row)
{
    switch (m_flow.rows().row(row).kind) {
    case Kind::codeHeader:
        return paintHeader(m_flow.rows().row(row).block);
    case Kind::codeFooter:
        return paintHandle(m_flow.rows().row(row).block);
    case Kind::prose:
    case Kind::code:
        break;
    }
    QPainter &painter = m_paint.painter;
    if (const std::optional<QPointF> place = m_flow.bulletPlace(row)) {
        painter.setFont(m_paint.style.body);
        painter.drawText(*place + m_origin, QString(QChar(u'•')));
    }
    RowLayout *const layout = m_flow.layoutOf(row);
    if (!layout)
        return;
    const RowLayout::Selected selected = selectedIn(row, m_selected, m_paint.selectionLook);
    const QPoint origin = m_origin + m_flow.layoutOrigin(row);
    if (m_flow.rows().row(row).kind == Kind::prose) {
        layout->paint(painter, origin, m_paint.clip, selected);
        return paintLinkFocus(row);
    }
    QRect code = CodeBlockBox(m_flow, m_flow.rows().row(row).block).code().translated(m_origin);
    code &= m_paint.clip;
    painter.save();
    painter.setClipRect(code, Qt::IntersectClip);
    layout->paint(painter, origin, code, selected);
    painter.restore();
}

void FlowPainter::paintLinkFocus(int row)
{
    const std::optional<TranscriptButton> &focused = m_paint.focused;
    if (!focused || focused->kind != TranscriptButton::openLink || focused->message != m_message ||
        focused->row != row)
        return;
    QPainter &painter = m_paint.painter;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(m_paint.style.focus, focusWidth));
    for (const QRect &rect : m_flow.linkRects(row, focused->link))
        painter.drawRoundedRect(rect.translated(m_origin).adjusted(-focusWidth, 0, focusWidth, 0),
                                focusRadius, focusRadius);
    painter.restore();
}

void FlowPainter::paintHeader(int block)
{
    const CodeBlockBox box(m_flow, block);
    const QStringView language =
        MarkdownLines::language(m_flow.rows().line(m_flow.rows().block(block).header));
    const QString label = language.isEmpty() ? QCoreApplication::translate("Transcript", "code")
                                             : language.left(longestLabel).toString();
    const QRect button = box.copyButton();
    QRect place = box.header().adjusted(TranscriptStyle::codePadding, 0, 0, 0);
    place.setRight(button.left() - buttonPadding);
    QPainter &painter = m_paint.painter;
    const QPen pen = painter.pen();
    painter.setFont(m_paint.style.caption);
    painter.setPen(m_paint.style.secondary);
    painter.drawText(place.translated(m_origin), Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(label, Qt::ElideRight, place.width()));
    painter.setPen(pen);
    paintButton(painter, button.translated(m_origin), TranscriptButton::copyCode,
                m_paint.look({m_message, TranscriptButton::copyCode, block}), m_paint.style);
}

void FlowPainter::paintHandle(int block)
{
    const QRect handle = CodeBlockBox(m_flow, block).handle();
    if (handle.isEmpty())
        return;
    QPainter &painter = m_paint.painter;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_paint.style.faint(0.5));
    painter.drawRoundedRect(handle.translated(m_origin), handle.height() / 2.0, handle.height() / 2.0);
    painter.restore();
}
