// A place in a flow of text, and the stretch between two.
#pragma once

#include <QtGlobal>

#include <utility>

struct TextPosition
{
    int row = 0;
    qsizetype offset = 0; // into the row's text

    auto operator<=>(const TextPosition &) const = default;
};

struct TextRange
{
    TextPosition from;
    TextPosition to;

    bool isEmpty() const { return !(from < to); }
    bool operator==(const TextRange &) const = default;
};
