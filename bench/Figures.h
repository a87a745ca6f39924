// What the benchmarks measure with. All times are in milliseconds.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include <sys/resource.h>
#include <time.h>

// The middle one; the upper of two. `values` must not be empty.
inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

inline double wallTime()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(now).count();
}

// What this thread has had of the processor.
inline double threadTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// What all threads have had: of this process (RUSAGE_SELF), or of the children it has waited for
// (RUSAGE_CHILDREN).
inline double processTime(int who)
{
    rusage usage = {};
    getrusage(who, &usage);
    const auto inMilliseconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    return inMilliseconds(usage.ru_utime) + inMilliseconds(usage.ru_stime);
}

// The rounds of one measurement.
struct Figure
{
    std::vector<double> wall;
    std::vector<double> cpu; // of this process and its children

    template <class F>
    auto measure(F function)
    {
        const auto cpuTime = [] { return processTime(RUSAGE_SELF) + processTime(RUSAGE_CHILDREN); };
        const double wallStart = wallTime();
        const double cpuStart = cpuTime();
        auto result = function();
        cpu.push_back(cpuTime() - cpuStart);
        wall.push_back(wallTime() - wallStart);
        return result;
    }
};
