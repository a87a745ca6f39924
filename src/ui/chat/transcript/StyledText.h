// A text with the runs of it that stand out, free of fonts and colours.
#pragma once

#include <QFlags>
#include <QString>
#include <QStringList>

#include <vector>

struct StyledText
{
    enum Emphasis
    {
        plain = 0,
        emphasis = 1,
        strong = 2,
        code = 4,
        strikethrough = 8
    };
    Q_DECLARE_FLAGS(Emphases, Emphasis)

    struct Run
    {
        qsizetype start;
        qsizetype length;
        Emphases emphases;
        qsizetype link; // index into links, or -1

        bool operator==(const Run &) const = default;
    };

    QString text;
    std::vector<Run> runs; // in order, without overlap; what lies between them is plain
    QStringList links;     // the targets

    bool operator==(const StyledText &) const = default;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(StyledText::Emphases)
