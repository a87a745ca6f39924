#include "ui/chat/transcript/RepaintPlan.h"

#include <algorithm>

RepaintPlan planRepaint(const std::vector<VisibleRow> &before, const std::vector<VisibleRow> &now,
                        const std::optional<RowAddress> &changed)
{
    if (before.empty() || now.empty())
        return {};
    const auto isAbove = [](const VisibleRow &row, const RowAddress &address) {
        return row.address < address;
    };
    auto old = std::lower_bound(before.begin(), before.end(), now.front().address, isAbove);
    auto current = std::lower_bound(now.begin(), now.end(), before.front().address, isAbove);
    if (old == before.end() || current == now.end() || old->address != current->address)
        return {};
    const int shift = current->rect.top() - old->rect.top();
    // What of the last row that can be kept was out of sight is painted as it comes into sight.
    int from = current->rect.top();
    for (; old != before.end() && current != now.end(); ++old, ++current) {
        const bool isChanged = changed && current->address >= *changed;
        if (isChanged || old->address != current->address || old->rect.translated(0, shift) != current->rect)
            break;
        from = current->rect.bottom() + 1;
    }
    return {shift, std::max(0, from)};
}
