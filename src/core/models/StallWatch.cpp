#include "core/models/StallWatch.h"

#include <utility>

StallWatch::StallWatch(std::function<void()> onStall, std::chrono::milliseconds patience)
{
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(onStall));
    m_timer.start(patience);
}

void StallWatch::update(qint64 bytes)
{
    if (m_bytes == bytes)
        return;
    m_bytes = bytes;
    m_timer.start();
}
