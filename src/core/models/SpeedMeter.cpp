#include "core/models/SpeedMeter.h"

#include <utility>

SpeedMeter::SpeedMeter(Clock clock) : m_clock(std::move(clock)), m_lastTime(m_clock()) {}

void SpeedMeter::update(qint64 bytes)
{
    constexpr double leastSeconds = 0.5;
    constexpr double weightOfNew = 0.3;
    const auto now = m_clock();
    const double seconds = std::chrono::duration<double>(now - m_lastTime).count();
    if (seconds < leastSeconds)
        return;
    const double instant = (static_cast<double>(bytes) - static_cast<double>(m_lastBytes)) / seconds;
    m_speed = m_speed == 0 ? instant : weightOfNew * instant + (1 - weightOfNew) * m_speed;
    m_lastBytes = bytes;
    m_lastTime = now;
}
