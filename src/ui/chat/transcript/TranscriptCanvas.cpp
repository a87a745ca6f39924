#include "ui/chat/transcript/TranscriptCanvas.h"

#include "ui/chat/transcript/RepaintPlan.h"
#include "ui/widgets/AppearanceWatch.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int frameInterval = 16;   // milliseconds
constexpr int spinnerInterval = 50; // milliseconds
constexpr int spinnerStep = 30;     // degrees
constexpr int hintTop = 60;
// More rectangles than these are painted as one.
constexpr int manyRects = 4;

bool isWhole(double number)
{
    return number == std::floor(number);
}

} // namespace

TranscriptCanvas::TranscriptCanvas(QWidget *parent) : QAbstractScrollArea(parent), m_state(palette())
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setBackgroundRole(QPalette::Base);
}

void TranscriptCanvas::showConversation(const Conversation &conversation, bool isGenerating)
{
    const int countBefore = m_state.layout.count();
    const TranscriptLayout::Change change = m_state.layout.show(conversation, isGenerating);
    if (change.isOtherConversation)
        m_state.forgetFrom(0);
    else if (change.firstReplaced)
        m_state.forgetFrom(*change.firstReplaced);
    if (m_state.layout.count() != countBefore || change.isOtherConversation || change.firstReplaced)
        Q_EMIT messagesChanged();
    if (m_state.focused && m_state.layout.rect(*m_state.focused).isEmpty())
        m_state.focused.reset();
    m_mustFollow |= change.hasNewText;
    if (!change.isAny)
        return;
    setAccessibleDescription(m_state.layout.count() == 0 ? hint() : QString());
    m_hasChangedEverywhere |= change.isOtherConversation || change.firstReplaced;
    if (change.changed && (!m_changed || *change.changed < *m_changed))
        m_changed = change.changed;
    scheduleFrame();
}

void TranscriptCanvas::setLoadsModel(bool loads)
{
    if (m_state.layout.setLoadsModel(loads))
        repaintAll();
}

void TranscriptCanvas::setTextScale(double scale)
{
    if (std::exchange(m_textScale, scale) != scale)
        restyle();
}

void TranscriptCanvas::restyle()
{
    m_state.style = TranscriptStyle(palette(), m_textScale);
    m_state.layout.restyle();
    repaintAll();
}

void TranscriptCanvas::scheduleFrame()
{
    m_isStale = true;
    if (m_frame.isActive() || !isVisible())
        return;
    const qint64 elapsed = m_sinceFrame.isValid() ? m_sinceFrame.elapsed() : frameInterval;
    m_frame.start(static_cast<int>(std::max(qint64{0}, frameInterval - elapsed)), Qt::PreciseTimer, this);
}

void TranscriptCanvas::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_frame.timerId()) {
        frame();
    } else if (event->timerId() == m_spinner.timerId()) {
        m_spinnerAngle = (m_spinnerAngle + spinnerStep) % 360;
        for (const VisibleRow &row : m_state.layout.visible()) {
            if (row.address.row.part == MessagePart::waiting)
                viewport()->update(row.rect);
        }
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

void TranscriptCanvas::frame(const QRegion *painting)
{
    m_frame.stop();
    m_sinceFrame.start();
    const std::vector<VisibleRow> before = m_state.layout.visible();
    if (m_mustFollow && !m_isHeld) {
        m_state.layout.moveToEnd();
        m_mustFollow = false;
    }
    const QRect hovered = m_state.hovered ? m_state.layout.rect(*m_state.hovered) : QRect();
    m_state.layout.setViewport(layoutSize());
    m_state.layout.settle();
    updateScrollBar();
    m_isStale = false;
    repaintChanges(before, painting);
    if (m_state.hovered && m_state.layout.rect(*m_state.hovered) != hovered)
        forgetHovered();
    updateSpinner();
}

// It has moved away from below the mouse.
void TranscriptCanvas::forgetHovered()
{
    viewport()->update(m_state.layout.rect(*m_state.hovered));
    m_state.hovered.reset();
}

// The room for the scroll bar is kept free, so that lines are not broken anew when it comes or goes.
QSize TranscriptCanvas::layoutSize() const
{
    const QScrollBar *const bar = verticalScrollBar();
    const bool floats = style()->styleHint(QStyle::SH_ScrollBar_Transient, nullptr, bar);
    return {width() - (floats ? 0 : bar->sizeHint().width()), viewport()->height()};
}

void TranscriptCanvas::updateScrollBar()
{
    m_isSettingBar = true;
    QScrollBar *const bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(2 * m_state.style.bodyLineHeight);
    bar->setRange(0, m_state.layout.end());
    bar->setValue(m_state.layout.top());
    m_isSettingBar = false;
}

void TranscriptCanvas::repaintChanges(const std::vector<VisibleRow> &before, const QRegion *painting)
{
    RepaintPlan plan;
    if (!m_hasChangedEverywhere)
        plan = planRepaint(before, m_state.layout.visible(), m_changed);
    m_hasChangedEverywhere = false;
    m_changed.reset();
    // A part of a device pixel cannot be moved by copying, and neither may the ring around it all.
    const bool mayMove = !painting && isWhole(devicePixelRatioF()) && !showsFocusRing();
    if (plan.shift != 0 && !mayMove)
        plan = {};
    if (plan.shift != 0)
        viewport()->scroll(0, plan.shift);
    QRegion region(0, plan.from, viewport()->width(), viewport()->height() - plan.from);
    if (painting)
        region -= *painting;
    viewport()->update(region);
}

void TranscriptCanvas::updateSpinner()
{
    const std::vector<VisibleRow> &rows = m_state.layout.visible();
    const bool waits = std::any_of(rows.begin(), rows.end(), [](const VisibleRow &row) {
        return row.address.row.part == MessagePart::waiting;
    });
    if (!waits || !isVisible() || AppearanceWatch::shared().isMotionReduced())
        m_spinner.stop();
    else if (!m_spinner.isActive())
        m_spinner.start(spinnerInterval, this);
}

bool TranscriptCanvas::showsFocusRing() const
{
    return hasFocus() && m_hasKeyboardFocus && !m_state.focused;
}

void TranscriptCanvas::paintEvent(QPaintEvent *event)
{
    if (m_isStale)
        frame(&event->region());
    QPainter painter(viewport());
    if (m_state.layout.count() == 0)
        paintHint(painter);
    const QRegion &region = event->region();
    // At a fractional scale the edges of neighbouring rectangles share device pixels.
    if (isWhole(devicePixelRatioF()) && region.rectCount() <= manyRects) {
        for (const QRect &rect : region)
            paintRect(painter, rect);
    } else {
        paintRect(painter, region.boundingRect());
    }
    if (showsFocusRing()) {
        painter.setClipping(false);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(m_state.style.focus, 2));
        painter.drawRect(QRectF(viewport()->rect()).adjusted(1, 1, -1, -1));
    }
}

void TranscriptCanvas::paintRect(QPainter &painter, const QRect &rect)
{
    TranscriptPaint paint{painter,         m_state.style,   rect, m_state.selection, {},
                          m_state.hovered, m_state.pressed, {},   m_spinnerAngle};
    if (hasFocus())
        paint.focused = m_state.focused;
    paint.selectionLook.setBackground(palette().highlight());
    paint.selectionLook.setForeground(palette().highlightedText());
    painter.setClipRect(rect);
    TranscriptLayout &layout = m_state.layout;
    for (int index = layout.count() == 0 ? 0 : layout.messageAt(rect.top()); index < layout.count();
         ++index) {
        const QPoint origin = layout.messageOrigin(index);
        if (origin.y() > rect.bottom())
            break;
        layout.body(index).paint(paint, origin, index);
    }
}

// Shown where there is no message yet.
QString TranscriptCanvas::hint()
{
    return tr("Say hello. Everything stays on this Mac.");
}

void TranscriptCanvas::paintHint(QPainter &painter)
{
    painter.setFont(m_state.style.body);
    painter.setPen(m_state.style.secondary);
    const QRect place =
        viewport()->rect().adjusted(TranscriptStyle::margin, hintTop, -TranscriptStyle::margin, 0);
    painter.drawText(place, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, hint());
}

void TranscriptCanvas::scrollContentsBy(int, int)
{
    if (m_isSettingBar)
        return;
    scrollTo(verticalScrollBar()->value());
}

void TranscriptCanvas::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    repaintAll();
}

void TranscriptCanvas::showEvent(QShowEvent *event)
{
    QAbstractScrollArea::showEvent(event);
    scheduleFrame();
}

void TranscriptCanvas::scrollTo(int top)
{
    m_state.layout.moveTo(top);
    frame();
}

// On the way there guessed heights turn out to be wrong.
void TranscriptCanvas::reveal(const TranscriptButton &button)
{
    constexpr int attempts = 4;
    for (int i = 0; i < attempts; ++i) {
        const QRect place = m_state.layout.rect(button);
        const int above = std::min(0, place.top() - TranscriptStyle::margin);
        const int below = std::max(0, place.bottom() + TranscriptStyle::margin - viewport()->height());
        if (above == 0 && below == 0)
            return;
        scrollTo(m_state.layout.top() + (above < 0 ? above : below));
    }
}

void TranscriptCanvas::setHeld(bool isHeld)
{
    if (isHeld == m_isHeld)
        return;
    m_isHeld = isHeld;
    TranscriptLayout &layout = m_state.layout;
    if (isHeld && !layout.visible().empty())
        layout.holdOn(layout.visible().front().address);
    else if (!isHeld && layout.top() == layout.end())
        layout.moveToEnd();
    scheduleFrame();
}

void TranscriptCanvas::repaintAll()
{
    m_hasChangedEverywhere = true;
    scheduleFrame();
}

void TranscriptCanvas::setKeyboardFocus(bool hasFocus)
{
    m_hasKeyboardFocus = hasFocus;
    viewport()->update();
}

void TranscriptCanvas::changeEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ApplicationFontChange:
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
        restyle();
        break;
    default:
        break;
    }
    QAbstractScrollArea::changeEvent(event);
}
