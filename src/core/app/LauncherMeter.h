// Keeps the bar in the desktop's launcher at what has come of the running download.
#pragma once

#include <QObject>
#include <QTimer>

#include <optional>

class DownloadQueue;
class LauncherProgress;

class LauncherMeter : public QObject
{
    Q_OBJECT

public:
    // Both must outlive this.
    LauncherMeter(DownloadQueue &queue, LauncherProgress &progress);

    // What the bar is to show, 0 to 1; nothing while no download runs.
    static std::optional<double> fraction(const DownloadQueue &queue);

private:
    void update();

    DownloadQueue &m_queue;
    LauncherProgress &m_progress;
    std::optional<double> m_shown;
    QTimer m_pause; // between two updates: each one wakes up the desktop
};
