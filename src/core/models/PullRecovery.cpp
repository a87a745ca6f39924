#include "core/models/PullRecovery.h"

#include "core/models/DownloadQueue.h"
#include "platform/power/MachineSleep.h"

#include <utility>

PullRecovery::PullRecovery(DownloadQueue &queue, MachineSleep &sleep, Pauses pauses)
    : m_queue(queue), m_pauses(pauses)
{
    m_aftermath.setSingleShot(true);
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &PullRecovery::resume);
    connect(&sleep, &MachineSleep::begins, this, [this] { m_isAsleep = true; });
    connect(&sleep, &MachineSleep::ended, this, [this] {
        m_isAsleep = false;
        m_aftermath.start(m_pauses.aftermath);
        if (!m_broken.isEmpty())
            m_next.start(m_pauses.untilNext);
    });
}

bool PullRecovery::takes(const DownloadItem &item)
{
    if (!item.phase.isCut || !(m_isAsleep || m_aftermath.isActive()))
        return false;
    m_broken.append(item.id);
    if (!m_isAsleep)
        m_next.start(m_pauses.untilNext);
    return true;
}

void PullRecovery::resume()
{
    for (const QString &id : std::exchange(m_broken, {})) {
        const DownloadItem *const item = m_queue.item(id);
        if (item && item->phase.kind == DownloadItem::Phase::failed) {
            const DownloadItem broken = *item;
            m_queue.enqueue(broken.pullName, broken.knownSize);
        }
    }
}
