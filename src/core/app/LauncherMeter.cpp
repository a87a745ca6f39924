#include "core/app/LauncherMeter.h"

#include "core/models/DownloadQueue.h"
#include "platform/launcher/LauncherProgress.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

LauncherMeter::LauncherMeter(DownloadQueue &queue, LauncherProgress &progress)
    : m_queue(queue), m_progress(progress)
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(300ms);
    connect(&m_pause, &QTimer::timeout, this, &LauncherMeter::update);
    connect(&m_queue, &DownloadQueue::itemsChanged, this, &LauncherMeter::update);
}

std::optional<double> LauncherMeter::fraction(const DownloadQueue &queue)
{
    const auto isRunning = [](const DownloadItem &item) {
        return item.phase.kind == DownloadItem::Phase::running;
    };
    const auto running = std::ranges::find_if(queue.items(), isRunning);
    if (running == queue.items().cend())
        return std::nullopt;
    if (running->total < 1)
        return 0.0;
    return std::clamp(double(running->completed) / double(running->total), 0.0, 1.0);
}

void LauncherMeter::update()
{
    const std::optional<double> now = fraction(m_queue);
    // Its coming and going is told at once.
    if (now == m_shown || (m_pause.isActive() && now.has_value() == m_shown.has_value()))
        return;
    m_shown = now;
    m_progress.show(now);
    m_pause.start();
}
