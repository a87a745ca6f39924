// Heights one below the other: where each begins, and which one stands at a place, in logarithmic time
// however they change.
#pragma once

#include <vector>

class HeightIndex
{
public:
    int count() const { return static_cast<int>(m_heights.size()); }
    int height(int index) const { return m_heights[static_cast<size_t>(index)]; }
    int total() const { return top(count()); }

    void append(int height);
    void truncate(int count);
    void set(int index, int height);

    // The sum of the heights of the first `index` ones.
    int top(int index) const;
    // The last one that begins at or above `y`, which lets one without height give way to the one behind it;
    // the first one when `y` is negative. There must be at least one.
    int at(int y) const;

private:
    std::vector<int> m_heights;
    std::vector<int> m_sums; // a binary indexed tree: the one at i holds the sum of the lowbit(i + 1) up to i
};
