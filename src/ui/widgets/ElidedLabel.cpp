#include "ui/widgets/ElidedLabel.h"

#include "ui/widgets/PlainText.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

// Several blanks may be part of a name, so only what is no blank becomes one.
QString inOneLine(QString text)
{
    const auto breaks = [](QChar character) {
        return character.category() == QChar::Other_Control ||
               character.category() == QChar::Separator_Line ||
               character.category() == QChar::Separator_Paragraph;
    };
    std::replace_if(text.begin(), text.end(), breaks, QChar(QChar::Space));
    return text;
}

} // namespace

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_elideMode = mode;
    update();
}

// Measuring text takes time by its length, and nobody could read more anyway.
QString ElidedLabel::line() const
{
    return inOneLine(shortened(text()));
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
        const bool cut = shown() != inOneLine(text());
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                           cut ? plainToolTip(shortened(text())) : QString(), this);
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
