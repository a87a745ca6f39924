// The laid-out text of one row of the transcript.
#pragma once

#include <QPoint>
#include <QRect>
#include <QTextCharFormat>

class QPainter;

class RowLayout
{
public:
    // A part of the row's text that is selected, and how that looks. Nothing when `to` is not behind `from`.
    struct Selected
    {
        qsizetype from = 0;
        qsizetype to = 0;
        QTextCharFormat look;
    };

    RowLayout() = default;
    RowLayout(const RowLayout &) = delete;
    RowLayout &operator=(const RowLayout &) = delete;
    virtual ~RowLayout() = default;

    // In device-independent pixels.
    virtual int height() const = 0;

    // Paints what lies within `clip`, which like `origin` is in the painter's coordinates, with the painter's
    // pen.
    virtual void paint(QPainter &painter, QPoint origin, const QRect &clip, const Selected &selected) = 0;

    // The place in the text that is nearest to `point`, which is relative to the layout's origin.
    virtual qsizetype offsetAt(QPoint point) = 0;
};
