// Where a row stands in the transcript.
#pragma once

#include "ui/chat/transcript/MessagePart.h"

#include <QRect>

#include <utility>

struct RowAddress
{
    int message = 0; // its index
    MessageRow row;

    auto operator<=>(const RowAddress &) const = default;
};

struct VisibleRow
{
    RowAddress address;
    QRect rect; // in the viewport
};
