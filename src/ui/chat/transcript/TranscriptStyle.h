// The fonts, measures and colours of the transcript, taken from the application's font and a palette.
#pragma once

#include "core/chat/MarkdownLine.h"

#include <QColor>
#include <QFont>
#include <QPalette>

struct TranscriptStyle
{
    // `scale` is a factor of the size that all texts have.
    explicit TranscriptStyle(const QPalette &palette, double scale = 1);

    QFont body;
    QFont title2;
    QFont title3;
    QFont headline;
    QFont callout;
    QFont caption;
    QFont code;       // of code blocks
    QFont codeInline; // of code spans; those in headings take the size of the heading

    QColor text;
    QColor secondary;
    QColor link;
    QColor bubble;
    QColor focus; // of the ring around what has the keyboard

    int bodyLineHeight;
    double bodyCharacterWidth; // on average
    int codeLineHeight;
    double codeColumnWidth; // as text layouts measure it
    int captionHeight;
    int calloutHeight;

    // In device-independent pixels.
    static constexpr int margin = 16;
    static constexpr int messageGap = 14;
    static constexpr int partGap = 8;
    static constexpr int blockGap = 8;
    static constexpr int lineGap = 3;
    static constexpr int blankLine = 4;
    static constexpr int bulletGap = 6;
    static constexpr int bubblePadding = 10;
    static constexpr int bubbleRadius = 12;
    static constexpr int freeBesideBubble = 80;
    static constexpr int freeBesideAnswer = 40;
    static constexpr int footerGap = 12;
    static constexpr int codePadding = 10;
    static constexpr int codeHeaderPadding = 5;
    static constexpr int codeRadius = 8;

    const QFont &font(MarkdownLine::Style style) const;

    // The secondary colour at `opacity`, from 0 to 1.
    QColor faint(double opacity) const;
};
