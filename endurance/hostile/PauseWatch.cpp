#include "PauseWatch.h"

#include <algorithm>
#include <ctime>

using namespace std::chrono_literals;

PauseWatch::PauseWatch(std::chrono::seconds patience) : m_last(processorTime())
{
    connect(&m_heart, &QTimer::timeout, this, &PauseWatch::beat);
    m_heart.setTimerType(Qt::PreciseTimer);
    m_heart.start(2ms);
    m_watcher = std::thread([this, patience] { watch(patience); });
}

PauseWatch::~PauseWatch()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_watcher.join();
}

void PauseWatch::begin(const QString &what)
{
    beat();
    m_case = what;
    const std::lock_guard lock(m_mutex);
    m_watchedCase = what.toUtf8();
}

PauseWatch::Duration PauseWatch::processorTime()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

void PauseWatch::beat()
{
    ++m_beats;
    const Duration now = processorTime();
    Duration &longest = m_pauses[m_case];
    longest = std::max(longest, now - m_last - m_aside);
    m_last = now;
    m_aside = {};
}

void PauseWatch::watch(std::chrono::seconds patience)
{
    std::unique_lock lock(m_mutex);
    quint64 seen = m_beats;
    while (!m_changed.wait_for(lock, patience, [this] { return m_ending; })) {
        const quint64 now = m_beats;
        if (now == seen)
            qFatal("The main thread hangs in: %s", m_watchedCase.constData());
        seen = now;
    }
}
