// A turning ring and a few words beside it, shown while nothing of an answer has arrived.
#pragma once

#include <QRect>
#include <QString>

class QPainter;
struct TranscriptStyle;

class WaitingIndicator
{
public:
    static int height(const TranscriptStyle &style);
    // `angle` in degrees.
    static void paint(QPainter &painter, const QRect &rect, const QString &text, int angle,
                      const TranscriptStyle &style);
};
