// The row below a message: how fast it came, and its buttons. Coordinates are relative to the footer's upper
// left corner.
#pragma once

#include "ui/chat/transcript/MessageFacts.h"
#include "ui/chat/transcript/TranscriptButton.h"
#include "ui/chat/transcript/TranscriptPaint.h"

#include <QPoint>
#include <QSize>
#include <QString>

#include <vector>

class MessageFooter
{
public:
    MessageFooter(const MessageFacts &facts, const TranscriptStyle &style);

    bool isEmpty() const { return m_speed.isEmpty() && m_buttons.empty(); }
    // The labels alone; what surrounds a button's label reaches beyond it.
    QSize size() const;
    // May be empty.
    const QString &speed() const { return m_speed; }
    // Valid as long as the footer.
    const std::vector<TranscriptButton::Kind> &buttons() const { return m_buttons; }
    // Empty when there is no such button.
    QRect rect(TranscriptButton::Kind button) const;

    // `message` is the message's index.
    void paint(const TranscriptPaint &paint, QPoint origin, int message) const;

private:
    int speedWidth() const;

    const TranscriptStyle &m_style;
    QString m_speed;
    std::vector<TranscriptButton::Kind> m_buttons; // in reading order
};
