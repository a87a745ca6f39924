// What a user who looks elsewhere is told of work that has ended, as functions of values, and which place
// each such text leads to.
#pragma once

#include "core/chat/Conversation.h"
#include "core/models/DownloadItem.h"
#include "platform/notification/NotificationCenter.h"

#include <QString>
#include <QUuid>

#include <chrono>
#include <optional>

namespace Announcement {

// A reply that took no longer is not worth a word.
inline constexpr std::chrono::milliseconds briefReply{10'000};

// Of a pull that has failed, or else succeeded.
Notification ofPull(const DownloadItem &item);

// Of a reply that has ended; `failure` says why it failed and is empty where it did not.
Notification ofReply(const Conversation &conversation, const QString &failure);

// The conversation that a notification with this key is about; nothing for any other.
std::optional<QUuid> conversation(const QString &key);

} // namespace Announcement
