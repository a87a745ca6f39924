#include "core/models/StallWatch.h"

#include <utility>

StallWatch::StallWatch(std::function<void()> onStall, std::chrono::milliseconds patience)
{
    m_timer.setSingleShot(true);
    m_timer.callOnTimeout(std::move(onStall));
    m_timer.start(patience);
}

void StallWatch::update(qint64 bytes)
{
    if (m_bytes == bytes)
        return;
    m_bytes = bytes;
    m_timer.start();
}
