#include "core/models/Fmt.h"

#include "platform/text/ByteCount.h"
#include "platform/text/PluralForm.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double longestLeft = 99 * hour; // what lies further off nobody can foretell

// The whole part; what an integer cannot hold becomes the nearest that it can.
qint64 truncated(double value)
{
    using Limits = std::numeric_limits<qint64>;
    if (std::isnan(value))
        return 0;
    // The bound is exactly 2^63: the largest integer itself has no double.
    constexpr double bound = 9223372036854775808.0;
    if (value >= bound)
        return Limits::max();
    return value < -bound ? Limits::min() : static_cast<qint64>(value);
}

qint64 percent(const DownloadItem &item)
{
    if (item.total < 1)
        return 0;
    const double share = static_cast<double>(item.completed) / static_cast<double>(item.total);
    return truncated(std::min(share, 1.0) * 100);
}

} // namespace

QString Fmt::speed(double bytesPerSecond)
{
    return tr("%1/s").arg(byteCountText(truncated(bytesPerSecond)));
}

QString Fmt::eta(double seconds)
{
    if (seconds < minute) {
        const qint64 whole = truncated(seconds);
        return tr("%1 s left", nullptr, pluralForm(whole)).arg(whole);
    }
    if (seconds < hour) {
        const qint64 whole = truncated(seconds / minute);
        return tr("%1 min left", nullptr, pluralForm(whole)).arg(whole);
    }
    return tr("%1 h left").arg(seconds / hour, 0, 'f', 1);
}

QString Fmt::waiting()
{
    return tr("Waiting for data…");
}

QString Fmt::progress(const DownloadItem &item)
{
    const auto separator = u" \u00B7 "_s;
    QString text =
        tr("%1% \u00B7 %2 of %3")
            .arg(QString::number(percent(item)), byteCountText(item.completed), byteCountText(item.total));
    if (item.stalled)
        return text + separator + waiting();
    if (item.speed > 0)
        text += separator + speed(item.speed);
    if (item.speed > 1 && item.completed < item.total) {
        const double left = static_cast<double>(item.total) - static_cast<double>(item.completed);
        const double seconds = left / item.speed;
        if (seconds <= longestLeft)
            text += separator + eta(seconds);
    }
    return text;
}
