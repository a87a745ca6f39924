// How the program does on a desktop whose user looks elsewhere: notifications of what has ended and the way
// back by them, the launcher's bar, and a machine that stays awake while there is work.
#pragma once

#include "core/app/Announcement.h"
#include "core/app/LauncherMeter.h"
#include "core/models/PullRecovery.h"
#include "platform/instance/Activation.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QUuid>

#include <chrono>
#include <functional>
#include <optional>

class AppState;
class LauncherProgress;
class MachineSleep;
class NotificationCenter;

class DesktopPresence : public QObject
{
    Q_OBJECT

public:
    struct Seams
    {
        NotificationCenter &notifications;
        LauncherProgress &launcher;
        MachineSleep &sleep;
        std::function<bool()> isUserHere; // a window of the program is active
        std::chrono::milliseconds briefReply = Announcement::briefReply;
        PullRecovery::Pauses recovery = {};
    };

    // `state` and all that is referred to must outlive this.
    DesktopPresence(AppState &state, Seams seams);

    // The user has come to a window of the program, and needs no notification any more.
    void welcome();

Q_SIGNALS:
    // The window is to come to the front; the state shows the place already.
    void frontRequested(const Activation &activation);

private:
    void watchReply();
    void stayAwake();
    void announce(const Notification &notification);
    void open(const QString &key, const Activation &activation);

    AppState &m_state;
    const Seams m_seams;
    LauncherMeter m_meter;
    PullRecovery m_recovery;
    std::optional<QUuid> m_replying; // the conversation with the reply that was last known to stream
    QElapsedTimer m_replyTime;
    QString m_replyFailure;
};
