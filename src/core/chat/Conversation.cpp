#include "core/chat/Conversation.h"

using namespace Qt::StringLiterals;

QString Conversation::newTitle()
{
    return u"New chat"_s;
}

Conversation Conversation::make(const QString &model)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    return {QUuid::createUuid(), newTitle(), model, true, now, now, {}};
}
