#include "ui/widgets/HeightIndex.h"

#include <algorithm>
#include <bit>

namespace {

size_t lowestBit(size_t number)
{
    return number & (~number + 1);
}

} // namespace

void HeightIndex::append(int height)
{
    m_heights.push_back(height);
    const size_t place = m_heights.size();
    int sum = height;
    for (size_t step = 1; step < lowestBit(place); step *= 2)
        sum += m_sums[place - step - 1];
    m_sums.push_back(sum);
}

void HeightIndex::truncate(int count)
{
    m_heights.resize(static_cast<size_t>(count));
    m_sums.resize(static_cast<size_t>(count));
}

void HeightIndex::set(int index, int height)
{
    const int growth = height - this->height(index);
    m_heights[static_cast<size_t>(index)] = height;
    for (size_t place = static_cast<size_t>(index) + 1; place <= m_sums.size(); place += lowestBit(place))
        m_sums[place - 1] += growth;
}

int HeightIndex::top(int index) const
{
    int sum = 0;
    for (size_t place = static_cast<size_t>(index); place > 0; place -= lowestBit(place))
        sum += m_sums[place - 1];
    return sum;
}

int HeightIndex::at(int y) const
{
    size_t place = 0;
    int sum = 0;
    for (size_t step = std::bit_floor(m_sums.size()); step > 0; step /= 2) {
        if (place + step <= m_sums.size() && sum + m_sums[place + step - 1] <= y) {
            place += step;
            sum += m_sums[place - 1];
        }
    }
    return std::min(static_cast<int>(place), count() - 1);
}
