// How one line of Markdown prose is drawn.
#pragma once

#include <QStringView>

struct MarkdownLine
{
    enum class Style
    {
        blank,
        title2,
        title3,
        headline,
        bullet,
        body
    };

    Style style;
    qsizetype inset;  // from the left, in device-independent pixels
    QStringView text; // what is left to draw once the marker is off; inline Markdown

    static MarkdownLine read(QStringView line);
};

// `text` without the spaces and tabs at both ends, or in front only.
QStringView withoutBlanks(QStringView text);
QStringView withoutBlanksInFront(QStringView text);
