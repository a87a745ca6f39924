// Whatever a conversation file holds, reading it ends; and what could be read is the same after it was
// written and read again.
#include "core/chat/ConversationFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Qt's reader drops a U+FEFF at the start of a text.
bool sameText(const QJsonValue &value, const QString &text)
{
    const QString other = value.toString();
    return value.isString() && (other == text || QChar(QChar::ByteOrderMark) + other == text);
}

bool agrees(const QJsonObject &object, const Conversation &conversation)
{
    const QJsonArray messages = object.value(QStringLiteral("messages")).toArray();
    if (!sameText(object.value(QStringLiteral("title")), conversation.title) ||
        !sameText(object.value(QStringLiteral("model")), conversation.model) ||
        messages.size() != conversation.messages.size())
        return false;
    for (qsizetype i = 0; i < messages.size(); ++i) {
        const QJsonObject message = messages.at(i).toObject();
        const QJsonValue speed = message.value(QStringLiteral("tokensPerSecond"));
        if (!sameText(message.value(QStringLiteral("content")), conversation.messages.at(i).content) ||
            speed.isDouble() != conversation.messages.at(i).tokensPerSecond.has_value() ||
            speed.toDouble() != conversation.messages.at(i).tokensPerSecond.value_or(0))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray content(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const std::optional<Conversation> conversation = ConversationFile::decode(content);
    if (!conversation)
        return 0;
    if (!agrees(QJsonDocument::fromJson(content).object(), *conversation))
        std::abort();
    const std::optional<QByteArray> written = ConversationFile::encode(*conversation);
    if (!written || ConversationFile::decode(*written) != conversation)
        std::abort();
    return 0;
}
