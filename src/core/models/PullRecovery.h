// Goes on with a pull that the machine's sleep has broken: right after waking there is often no network yet.
#pragma once

#include "core/models/DownloadItem.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <chrono>

class DownloadQueue;
class MachineSleep;

class PullRecovery : public QObject
{
    Q_OBJECT

public:
    struct Pauses
    {
        std::chrono::milliseconds untilNext{5'000};   // before a pull is tried again
        std::chrono::milliseconds aftermath{120'000}; // of a sleep, in which a failure counts as its work
    };

    // Both must outlive this.
    PullRecovery(DownloadQueue &queue, MachineSleep &sleep, Pauses pauses);
    PullRecovery(DownloadQueue &queue, MachineSleep &sleep) : PullRecovery(queue, sleep, Pauses()) {}

    // Whether the failure of `item` is the work of a sleep; its pull then goes on by itself, unless the user
    // takes it off the list before.
    bool takes(const DownloadItem &item);

private:
    void resume();

    DownloadQueue &m_queue;
    const Pauses m_pauses;
    bool m_isAsleep = false;
    QTimer m_aftermath;
    QTimer m_next;
    QStringList m_broken; // ids
};
