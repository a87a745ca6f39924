// Turns a growing byte count into a smoothed speed that does not jump with every report.
#pragma once

#include <QtGlobal>

#include <chrono>
#include <functional>

class SpeedMeter
{
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    // The first sample is measured from now and from 0 bytes.
    explicit SpeedMeter(Clock clock = std::chrono::steady_clock::now);

    // Takes the count of bytes received so far; reports less than half a second apart are passed over.
    void update(qint64 bytes);

    // Bytes per second; 0 before the first sample, negative while the count falls.
    double speed() const { return m_speed; }

private:
    Clock m_clock;
    std::chrono::steady_clock::time_point m_lastTime;
    qint64 m_lastBytes = 0;
    double m_speed = 0;
};
