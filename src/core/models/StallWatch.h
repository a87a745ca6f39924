// Tells a transfer that has stalled from one that is merely slow.
#pragma once

#include <QTimer>
#include <QtGlobal>

#include <chrono>
#include <functional>

// Main thread.
class StallWatch
{
public:
    static constexpr std::chrono::milliseconds usualPatience{5'000};

    // Awaits bytes from now on. `onStall` is called each time that none have come for `patience`, once until
    // there are some again.
    explicit StallWatch(std::function<void()> onStall, std::chrono::milliseconds patience = usualPatience);

    // Takes the count of bytes received so far; the same count again is no news.
    void update(qint64 bytes);

    bool stalled() const { return !m_timer.isActive(); }

private:
    QTimer m_timer;
    qint64 m_bytes = 0;
};
