#include "ui/chat/transcript/WaitingIndicator.h"

#include "ui/chat/transcript/TranscriptStyle.h"

#include <QPainter>

#include <algorithm>

namespace {

// In device-independent pixels.
constexpr int ringSize = 14;
constexpr int ringGap = 6;
constexpr int stroke = 2;

} // namespace

int WaitingIndicator::height(const TranscriptStyle &style)
{
    return std::max(ringSize, style.captionHeight);
}

void WaitingIndicator::paint(QPainter &painter, const QRect &rect, const QString &text, int angle,
                             const TranscriptStyle &style)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double top = rect.top() + (rect.height() - ringSize) / 2.0;
    const QRectF ring = QRectF(rect.left(), top, ringSize, ringSize).adjusted(1, 1, -1, -1);
    painter.setPen(QPen(style.faint(0.3), stroke));
    painter.drawEllipse(ring);
    // Qt counts angles in sixteenths of a degree, against the clock.
    painter.setPen(QPen(style.secondary, stroke, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -angle * 16, 90 * 16);
    painter.setFont(style.caption);
    painter.setPen(style.secondary);
    painter.drawText(rect.adjusted(ringSize + ringGap, 0, 0, 0), Qt::AlignVCenter | Qt::TextSingleLine, text);
    painter.restore();
}
