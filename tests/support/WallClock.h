// The time of day, for the one test program that includes this: it can be set without touching the machine's.
#pragma once

#include <QDateTime>
#include <QTest>

#include <atomic>
#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace wallclock {

constexpr time_t hour = 3600;

inline std::atomic<time_t> shift = 0; // seconds

// The clock as the program sees it is so far from the machine's.
inline void set(int hours)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const time_t change = hours * hour - shift;
    shift = hours * hour;
    const qint64 moved = before.secsTo(QDateTime::currentDateTimeUtc());
    QVERIFY2(qAbs(moved - change) < hour / 2, "the clock cannot be set here");
}

} // namespace wallclock

// These stand in front of the C library's for the whole process, Qt included. The clock that only runs
// forward stays as it is.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += wallclock::shift;
    return result;
}

extern "C" int gettimeofday(timeval *time, void *) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}
