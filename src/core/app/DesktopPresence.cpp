#include "core/app/DesktopPresence.h"

#include "core/app/Announcement.h"
#include "core/app/AppState.h"
#include "platform/power/MachineSleep.h"

#include <utility>

DesktopPresence::DesktopPresence(AppState &state, Seams seams)
    : m_state(state),
      m_seams(std::move(seams)),
      m_meter(state.queue(), m_seams.launcher),
      m_recovery(state.queue(), m_seams.sleep, m_seams.recovery)
{
    const DownloadQueue &queue = m_state.queue();
    connect(&queue, &DownloadQueue::succeeded, this,
            [this](const DownloadItem &item) { announce(Announcement::ofPull(item)); });
    connect(&queue, &DownloadQueue::failed, this, [this](const DownloadItem &item) {
        if (!m_recovery.takes(item))
            announce(Announcement::ofPull(item));
    });
    connect(&queue, &DownloadQueue::itemsChanged, this, &DesktopPresence::stayAwake);
    connect(&m_state, &AppState::replyFailed, this, [this](const QString &why) { m_replyFailure = why; });
    connect(&m_state, &AppState::generatingIDChanged, this, &DesktopPresence::watchReply);
    connect(&m_seams.notifications, &NotificationCenter::activated, this, &DesktopPresence::open);
}

void DesktopPresence::welcome()
{
    m_seams.notifications.withdrawAll();
}

void DesktopPresence::watchReply()
{
    const std::optional<QUuid> ended = std::exchange(m_replying, m_state.generatingID());
    const QString failure = std::exchange(m_replyFailure, {});
    stayAwake();
    const Conversation *const conversation = ended ? m_state.chats().find(*ended) : nullptr;
    if (conversation && std::chrono::milliseconds(m_replyTime.elapsed()) > m_seams.briefReply)
        announce(Announcement::ofReply(*conversation, failure));
    m_replyTime.start();
}

void DesktopPresence::stayAwake()
{
    if (LauncherMeter::fraction(m_state.queue()))
        m_seams.sleep.prevent(tr("A model is being downloaded"));
    else if (m_state.generatingID())
        m_seams.sleep.prevent(tr("A reply is being written"));
    else
        m_seams.sleep.allow();
}

void DesktopPresence::announce(const Notification &notification)
{
    // What quitting ends is no news.
    if (!m_seams.isUserHere() && !quitToken().stopRequested())
        m_seams.notifications.show(notification);
}

void DesktopPresence::open(const QString &key, const Activation &activation)
{
    if (const std::optional<QUuid> id = Announcement::conversation(key)) {
        if (m_state.chats().find(*id))
            m_state.chats().setSelectedID(id);
        m_state.setTab(AppTab::chat);
    } else {
        m_state.setTab(AppTab::models);
    }
    Q_EMIT frontRequested(activation);
}
