#pragma once

// Points in time as the engine writes them: RFC 3339 with nanoseconds, and the two forms of its log.

#include <chrono>
#include <string>

namespace demo {

using WallTime = std::chrono::system_clock::time_point;

std::string utcTimestamp(WallTime time);
std::string localTimestamp(WallTime time);
std::string logTimestamp(WallTime time);
std::string accessTimestamp(WallTime time);

} // namespace demo
