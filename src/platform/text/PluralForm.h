// Which form of a word stands beside a number: Qt's translation functions take an int for that.
#pragma once

#include <QtGlobal>

#include <algorithm>
#include <limits>

// `count` as near as an int comes; what is negative counts as none.
inline int pluralForm(qint64 count)
{
    return static_cast<int>(std::clamp<qint64>(count, 0, std::numeric_limits<int>::max()));
}
