#include "core/app/Announcement.h"

#include "platform/text/OutsideText.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

const QString replyKey = u"reply:"_s;
const QString pullKey = u"pull:"_s;
// What notifications have room for.
constexpr qsizetype longestName = 80;
constexpr qsizetype longestReason = 240;

QString withReason(const QString &name, const QString &reason)
{
    const QString subject = isolated(shownLine(name, longestName));
    return reason.isEmpty() ? subject : subject + u'\n' + isolated(shownLine(reason, longestReason));
}

} // namespace

Notification Announcement::ofPull(const DownloadItem &item)
{
    const bool isFailed = item.phase.kind == DownloadItem::Phase::failed;
    return {pullKey + item.id,
            isFailed ? QCoreApplication::translate("Announcement", "Download failed")
                     : QCoreApplication::translate("Announcement", "Download finished"),
            withReason(item.pullName, isFailed ? item.phase.message : QString())};
}

Notification Announcement::ofReply(const Conversation &conversation, const QString &failure)
{
    return {replyKey + conversation.id.toString(),
            failure.isEmpty() ? QCoreApplication::translate("Announcement", "Reply finished")
                              : QCoreApplication::translate("Announcement", "Reply failed"),
            withReason(conversation.title, failure)};
}

std::optional<QUuid> Announcement::conversation(const QString &key)
{
    if (!key.startsWith(replyKey))
        return std::nullopt;
    return QUuid(key.sliced(replyKey.size()));
}
