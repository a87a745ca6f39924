// What has to be painted again once rows have moved or changed.
#pragma once

#include "ui/chat/transcript/RowAddress.h"

#include <optional>
#include <vector>

struct RepaintPlan
{
    // What is on the screen already moves down by so many pixels, and up when negative.
    int shift = 0;
    // From here to the bottom nothing on the screen can be used; 0 for everything.
    int from = 0;

    bool operator==(const RepaintPlan &) const = default;
};

// Compares the rows in sight before and now. Rows from `changed` on look different even where they have not
// moved.
RepaintPlan planRepaint(const std::vector<VisibleRow> &before, const std::vector<VisibleRow> &now,
                        const std::optional<RowAddress> &changed);
