// Measures for how long the main thread does not get back to its event loop, and remembers the case that was
// on. What counts is the processor time of that thread between two beats of a timer, so that a machine with
// other things to do does not look like a slow program; a thread that watches ends the process when no beat
// comes at all, as when it waits for something that never comes.
#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

class PauseWatch : public QObject
{
public:
    using Duration = std::chrono::nanoseconds;

    // Main thread. The process ends when no beat comes for `patience`.
    explicit PauseWatch(std::chrono::seconds patience);
    ~PauseWatch() override;

    // What is being done from now on.
    void begin(const QString &what);

    // The longest pause of each case.
    const QMap<QString, Duration> &pauses() const { return m_pauses; }

    // While one lives, the main thread works for the campaign and not for the program.
    class Aside
    {
    public:
        explicit Aside(PauseWatch &watch) : m_watch(watch), m_start(processorTime()) {}
        ~Aside() { m_watch.m_aside += processorTime() - m_start; }
        Aside(const Aside &) = delete;
        Aside &operator=(const Aside &) = delete;

    private:
        PauseWatch &m_watch;
        const Duration m_start;
    };

private:
    static Duration processorTime();
    void beat();
    void watch(std::chrono::seconds patience);

    QTimer m_heart;
    QMap<QString, Duration> m_pauses;
    QString m_case;
    Duration m_last;    // the thread's time at the last beat
    Duration m_aside{}; // since then, for the campaign

    std::atomic<quint64> m_beats = 0;
    std::mutex m_mutex; // of what follows
    std::condition_variable m_changed;
    QByteArray m_watchedCase;
    bool m_ending = false;
    std::thread m_watcher;
};
