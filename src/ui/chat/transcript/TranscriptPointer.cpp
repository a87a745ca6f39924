#include "ui/chat/transcript/TranscriptPointer.h"

#include "ui/chat/transcript/CodeBlockBox.h"
#include "ui/chat/transcript/FlowText.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

#include <algorithm>

namespace {

constexpr int scrollInterval = 30; // milliseconds

// Where the link leads; empty where there is none.
QString targetOf(const TranscriptHit &hit)
{
    return hit.link ? hit.link->target : QString();
}

} // namespace

TranscriptPointer::TranscriptPointer(TranscriptState &state, QWidget *viewport)
    : m_state(state), m_viewport(viewport)
{
}

void TranscriptPointer::press(const QMouseEvent &event)
{
    m_held = event.button();
    m_lastPoint = event.position().toPoint();
    if (event.button() != Qt::LeftButton)
        return;
    const TranscriptHit hit = TranscriptHit::at(m_state.layout, m_lastPoint);
    m_state.focused.reset();
    m_pressedLink = targetOf(hit);
    if (hit.button) {
        m_state.pressed = hit.button;
    } else if (hit.isHandle) {
        TextFlow &flow = *m_state.layout.body(hit.message).flow(*hit.part);
        m_handle = {hit.message, *hit.block, m_lastPoint.x(), CodeBlockBox(flow, *hit.block).scrolled()};
    } else if (hit.part) {
        const bool isThird =
            m_sinceDoubleClick.isValid() &&
            m_sinceDoubleClick.elapsed() < QApplication::doubleClickInterval() &&
            (m_lastPoint - m_doubleClickPoint).manhattanLength() < QApplication::startDragDistance();
        select(hit, event.modifiers().testFlag(Qt::ShiftModifier));
        if (isThird) {
            TextFlow &flow = *m_state.layout.body(hit.message).flow(*hit.part);
            m_grain = rowAround(flow, m_state.selection.cursor);
            extendTo(m_lastPoint);
        }
    } else {
        m_state.selection = {};
        m_state.layout.keepBody(-1);
    }
    Q_EMIT changed();
}

void TranscriptPointer::doubleClick(const QMouseEvent &event)
{
    press(event);
    if (event.button() != Qt::LeftButton || !m_isSelecting)
        return;
    TextFlow &flow = *m_state.layout.body(m_state.selection.message).flow(m_state.selection.part);
    m_grain = wordAt(flow, m_state.selection.cursor);
    extendTo(m_lastPoint);
    m_sinceDoubleClick.start();
    m_doubleClickPoint = m_lastPoint;
    Q_EMIT changed();
}

void TranscriptPointer::select(const TranscriptHit &hit, bool extend)
{
    const TextPosition place = TranscriptHit::nearest(m_state.layout, hit.message, *hit.part, m_lastPoint);
    TranscriptSelection &selection = m_state.selection;
    if (extend && selection.message == hit.message && selection.part == *hit.part)
        selection.cursor = place;
    else
        selection = {hit.message, *hit.part, place, place};
    m_grain = {selection.anchor, selection.anchor};
    m_isSelecting = true;
    m_state.layout.keepBody(hit.message);
}

void TranscriptPointer::extendTo(QPoint point)
{
    TranscriptSelection &selection = m_state.selection;
    if (selection.message < 0)
        return stopDragging();
    const TextPosition place =
        TranscriptHit::nearest(m_state.layout, selection.message, selection.part, point);
    const bool isBackwards = place < m_grain.from;
    selection.anchor = isBackwards ? m_grain.to : m_grain.from;
    selection.cursor = isBackwards ? place : std::max(place, m_grain.to);
}

void TranscriptPointer::moveTo(const QMouseEvent &event)
{
    m_lastPoint = event.position().toPoint();
    if (m_handle)
        return dragHandle(m_lastPoint.x());
    if (!m_isSelecting)
        return hover(TranscriptHit::at(m_state.layout, m_lastPoint));
    extendTo(m_lastPoint);
    if (beyond().isNull())
        m_scrolling.stop();
    else if (!m_scrolling.isActive())
        m_scrolling.start(scrollInterval, this);
    Q_EMIT changed();
}

QPoint TranscriptPointer::beyond() const
{
    const int below = m_lastPoint.y() + 1 - m_viewport->height();
    const int y = std::min(0, m_lastPoint.y()) + std::max(0, below);
    const TranscriptSelection &selection = m_state.selection;
    if (selection.message < 0)
        return {0, y};
    MessageBody &body = m_state.layout.body(selection.message);
    TextFlow &flow = *body.flow(selection.part);
    const int row = selection.cursor.row;
    const int block = row < flow.rowCount() ? flow.rows().row(row).block : -1;
    if (block < 0)
        return {0, y};
    const QPoint origin = m_state.layout.messageOrigin(selection.message) + body.flowOrigin(selection.part);
    const QRect code = CodeBlockBox(flow, block).code().translated(origin);
    const int x = std::min(0, m_lastPoint.x() - code.left()) + std::max(0, m_lastPoint.x() - code.right());
    return {x, y};
}

void TranscriptPointer::timerEvent(QTimerEvent *)
{
    const QPoint distance = beyond();
    if (distance.x() != 0) {
        const TranscriptSelection &selection = m_state.selection;
        TextFlow &flow = *m_state.layout.body(selection.message).flow(selection.part);
        CodeBlockBox box(flow, flow.rows().row(selection.cursor.row).block);
        box.scrollTo(box.scrolled() + distance.x());
    }
    if (distance.y() != 0)
        Q_EMIT scrollWanted(distance.y());
    extendTo(m_lastPoint);
    Q_EMIT changed();
}

void TranscriptPointer::dragHandle(int x)
{
    if (m_handle->message >= m_state.layout.count())
        return stopDragging();
    TextFlow &flow = *m_state.layout.body(m_handle->message).flow(MessagePart::text);
    if (m_handle->block >= flow.rows().blockCount())
        return stopDragging();
    CodeBlockBox box(flow, m_handle->block);
    if (box.scrollTo(m_handle->startScroll + qRound((x - m_handle->startX) * box.scrollPerPixel())))
        Q_EMIT changed();
}

void TranscriptPointer::hover(const TranscriptHit &hit)
{
    const bool isActive = hit.button || ParagraphLayout::isOpenable(targetOf(hit));
    const bool isText = hit.part && !hit.isHandle;
    m_viewport->setCursor(isActive ? Qt::PointingHandCursor : isText ? Qt::IBeamCursor : Qt::ArrowCursor);
    if (hit.button == m_state.hovered)
        return;
    m_state.hovered = hit.button;
    Q_EMIT changed();
}

void TranscriptPointer::release(const QMouseEvent &event)
{
    const QPoint point = event.position().toPoint();
    const std::optional<TranscriptButton> pressed = m_state.pressed;
    const QString link = m_pressedLink;
    const bool hasSelected = m_isSelecting && !m_state.selection.isEmpty();
    const TranscriptHit hit = TranscriptHit::at(m_state.layout, point);
    giveUp();
    if (event.button() != Qt::LeftButton)
        return;
    if (pressed && pressed == hit.button)
        Q_EMIT triggered(*pressed);
    else if (!link.isEmpty() && link == targetOf(hit) && !hasSelected)
        Q_EMIT linkClicked(link);
}

void TranscriptPointer::giveUp()
{
    m_held = Qt::NoButton;
    m_state.pressed.reset();
    m_pressedLink.clear();
    stopDragging();
    Q_EMIT changed();
    Q_EMIT released();
}

void TranscriptPointer::stopDragging()
{
    m_isSelecting = false;
    m_handle.reset();
    m_scrolling.stop();
}

void TranscriptPointer::leave()
{
    if (!isHeld())
        hover({});
}
