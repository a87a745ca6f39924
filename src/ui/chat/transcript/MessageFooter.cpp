#include "ui/chat/transcript/MessageFooter.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

std::vector<TranscriptButton::Kind> buttonsFor(const MessageFacts &facts)
{
    if (facts.isArriving())
        return {};
    if (facts.isUsers)
        return facts.isLast ? std::vector{TranscriptButton::edit} : std::vector<TranscriptButton::Kind>();
    if (facts.isLast)
        return {TranscriptButton::copyAnswer, TranscriptButton::regenerate};
    return {TranscriptButton::copyAnswer};
}

// C rounds a half to the even digit, QString away from zero; but C heeds the desktop's decimal point.
QString oneDecimal(double number)
{
    std::array<char, 400> digits{};
    std::snprintf(digits.data(), digits.size(), "%.1f", number);
    return QString::fromLatin1(digits.data()).replace(u',', u'.');
}

} // namespace

MessageFooter::MessageFooter(const MessageFacts &facts, const TranscriptStyle &style)
    : m_style(style), m_buttons(buttonsFor(facts))
{
    if (facts.tokensPerSecond && !facts.isUsers && !facts.isArriving())
        m_speed =
            QCoreApplication::translate("Transcript", "%1 tokens/s").arg(oneDecimal(*facts.tokensPerSecond));
}

int MessageFooter::speedWidth() const
{
    return m_speed.isEmpty() ? 0 : QFontMetrics(m_style.caption).horizontalAdvance(m_speed);
}

QSize MessageFooter::size() const
{
    int width = speedWidth();
    int height = m_style.captionHeight;
    for (const TranscriptButton::Kind kind : m_buttons) {
        const QRect button = rect(kind);
        width = button.right() + 1 - buttonPadding;
        height = std::max(height, button.height());
    }
    return {width, height};
}

QRect MessageFooter::rect(TranscriptButton::Kind button) const
{
    int x = m_speed.isEmpty() ? 0 : speedWidth() + TranscriptStyle::footerGap;
    for (const TranscriptButton::Kind kind : m_buttons) {
        const QSize size = buttonSize(kind, m_style);
        if (kind == button)
            return {QPoint(x - buttonPadding, 0), size};
        x += size.width() - 2 * buttonPadding + TranscriptStyle::footerGap;
    }
    return {};
}

void MessageFooter::paint(const TranscriptPaint &paint, QPoint origin, int message) const
{
    if (!m_speed.isEmpty()) {
        paint.painter.setFont(m_style.caption);
        paint.painter.setPen(m_style.secondary);
        paint.painter.drawText(QRect(origin, size()),
                               Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, m_speed);
    }
    for (const TranscriptButton::Kind kind : m_buttons)
        paintButton(paint.painter, rect(kind).translated(origin), kind, paint.look({message, kind, 0}),
                    m_style);
}
