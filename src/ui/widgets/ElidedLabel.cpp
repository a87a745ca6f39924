#include "ui/widgets/ElidedLabel.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/PlainText.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <cmath>

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

QString ElidedLabel::line() const
{
    return shownLine(text());
}

QString ElidedLabel::shown() const
{
    return fontMetrics().elidedText(line(), m_elideMode, contentsRect().width());
}

QSize ElidedLabel::sizeHint() const
{
    const int width = static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(line())));
    return QSize(width, fontMetrics().height()).grownBy(contentsMargins());
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QSize size = sizeHint();
    return {qMin(size.width(), 3 * fontMetrics().averageCharWidth()), size.height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const bool cut = shown() != line();
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           cut ? plainToolTip(text()) : QString(), this);
        return true;
    }
    return TextLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown());
}
