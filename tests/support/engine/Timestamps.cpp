#include "Timestamps.h"

#include <array>
#include <ctime>

namespace demo {

namespace {

struct Parts
{
    std::tm calendar{};
    long nanoseconds = 0;
};

Parts partsOf(WallTime time, bool local)
{
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch());
    const std::time_t seconds = static_cast<std::time_t>(sinceEpoch.count() / 1'000'000'000);
    Parts parts;
    parts.nanoseconds = static_cast<long>(sinceEpoch.count() % 1'000'000'000);
    if (local) {
        localtime_r(&seconds, &parts.calendar);
    } else {
        gmtime_r(&seconds, &parts.calendar);
    }
    return parts;
}

std::string formatted(const Parts &parts, const char *pattern)
{
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), pattern, &parts.calendar);
    return std::string(text.data(), length);
}

std::string fraction(long nanoseconds, std::size_t digits)
{
    const std::string number = std::to_string(nanoseconds);
    return "." + (std::string(9 - number.size(), '0') + number).substr(0, digits);
}

std::string offset(const Parts &parts)
{
    const std::string plain = formatted(parts, "%z");
    return plain.size() == 5 ? plain.substr(0, 3) + ":" + plain.substr(3) : std::string("Z");
}

} // namespace

std::string utcTimestamp(WallTime time)
{
    const Parts parts = partsOf(time, false);
    return formatted(parts, "%Y-%m-%dT%H:%M:%S") + fraction(parts.nanoseconds, 9) + "Z";
}

std::string localTimestamp(WallTime time)
{
    const Parts parts = partsOf(time, true);
    return formatted(parts, "%Y-%m-%dT%H:%M:%S") + fraction(parts.nanoseconds, 9) + offset(parts);
}

std::string logTimestamp(WallTime time)
{
    const Parts parts = partsOf(time, true);
    return formatted(parts, "%Y-%m-%dT%H:%M:%S") + fraction(parts.nanoseconds, 3) + offset(parts);
}

std::string accessTimestamp(WallTime time)
{
    return formatted(partsOf(time, true), "%Y/%m/%d - %H:%M:%S");
}

} // namespace demo
