#include "core/chat/ConversationFile.h"

#include "core/chat/StoredText.h"
#include "platform/text/JsonReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <bitset>
#include <cmath>
#include <iterator>

using namespace Qt::StringLiterals;

namespace {

constexpr auto contentKey = "content"_L1;
constexpr auto createdAtKey = "createdAt"_L1;
constexpr auto idKey = "id"_L1;
constexpr auto messagesKey = "messages"_L1;
constexpr auto modelKey = "model"_L1;
constexpr auto roleKey = "role"_L1;
constexpr auto thinkKey = "think"_L1;
constexpr auto thinkingKey = "thinking"_L1;
constexpr auto titleKey = "title"_L1;
constexpr auto tokensPerSecondKey = "tokensPerSecond"_L1;
constexpr auto updatedAtKey = "updatedAt"_L1;

void read(JsonReader &reader, QString &text)
{
    text = reader.string();
}

void read(JsonReader &reader, bool &value)
{
    value = reader.boolean();
}

void read(JsonReader &reader, std::optional<double> &number)
{
    number = reader.takeNull() ? std::nullopt : std::optional(reader.number());
}

void read(JsonReader &reader, QUuid &id)
{
    if (const std::optional<QUuid> known = uuidFromText(reader.string()))
        id = *known;
    else
        reader.fail();
}

void read(JsonReader &reader, QDateTime &date)
{
    if (const std::optional<QDateTime> known = dateFromText(reader.string()))
        date = *known;
    else
        reader.fail();
}

void read(JsonReader &reader, QList<ChatMessage> &messages);

template <auto field, class Record>
void readField(JsonReader &reader, Record &record)
{
    read(reader, record.*field);
}

template <class Record>
struct Member
{
    QLatin1StringView key;
    void (*read)(JsonReader &, Record &);
    bool isRequired = true;
};

const Member<ChatMessage> messageMembers[] = {
    {contentKey, readField<&ChatMessage::content>},
    {createdAtKey, readField<&ChatMessage::createdAt>},
    {idKey, readField<&ChatMessage::id>},
    {roleKey, readField<&ChatMessage::role>},
    {thinkingKey, readField<&ChatMessage::thinking>},
    {tokensPerSecondKey, readField<&ChatMessage::tokensPerSecond>, false},
};

const Member<Conversation> conversationMembers[] = {
    {createdAtKey, readField<&Conversation::createdAt>}, {idKey, readField<&Conversation::id>},
    {messagesKey, readField<&Conversation::messages>},   {modelKey, readField<&Conversation::model>},
    {thinkKey, readField<&Conversation::think>},         {titleKey, readField<&Conversation::title>},
    {updatedAtKey, readField<&Conversation::updatedAt>},
};

// Of a member that is there twice the last one counts.
template <class Record, std::size_t count>
Record readRecord(JsonReader &reader, const Member<Record> (&members)[count])
{
    Record record;
    std::bitset<count> seen;
    reader.beginObject();
    while (const std::optional<QByteArrayView> name = reader.nextMember()) {
        const QLatin1StringView key(*name);
        const auto hasKey = [key](const Member<Record> &member) { return member.key == key; };
        const auto member = std::find_if(std::begin(members), std::end(members), hasKey);
        if (member == std::end(members)) {
            reader.skip();
            continue;
        }
        member->read(reader, record);
        seen.set(static_cast<std::size_t>(member - std::begin(members)));
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (members[i].isRequired && !seen[i])
            reader.fail();
    }
    return record;
}

void read(JsonReader &reader, QList<ChatMessage> &messages)
{
    messages.clear();
    reader.beginArray();
    while (reader.nextElement())
        messages.append(readRecord(reader, messageMembers));
}

std::optional<QJsonObject> encodeMessage(const ChatMessage &message)
{
    const std::optional<QString> createdAt = dateText(message.createdAt);
    if (!createdAt)
        return std::nullopt;
    QJsonObject object{
        {contentKey, message.content}, {createdAtKey, *createdAt},      {idKey, uuidText(message.id)},
        {roleKey, message.role},       {thinkingKey, message.thinking},
    };
    if (message.tokensPerSecond) {
        if (!std::isfinite(*message.tokensPerSecond))
            return std::nullopt;
        object.insert(tokensPerSecondKey, *message.tokensPerSecond);
    }
    return object;
}

} // namespace

QString ConversationFile::name(const QUuid &id)
{
    return uuidText(id) + ".json"_L1;
}

std::optional<QByteArray> ConversationFile::encode(const Conversation &conversation)
{
    const std::optional<QString> createdAt = dateText(conversation.createdAt);
    const std::optional<QString> updatedAt = dateText(conversation.updatedAt);
    if (!createdAt || !updatedAt)
        return std::nullopt;
    QJsonArray messages;
    for (const ChatMessage &message : conversation.messages) {
        const std::optional<QJsonObject> object = encodeMessage(message);
        if (!object)
            return std::nullopt;
        messages.append(*object);
    }
    const QJsonObject object{
        {createdAtKey, *createdAt},     {idKey, uuidText(conversation.id)}, {messagesKey, messages},
        {modelKey, conversation.model}, {thinkKey, conversation.think},     {titleKey, conversation.title},
        {updatedAtKey, *updatedAt},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

std::optional<Conversation> ConversationFile::decode(const QByteArray &content)
{
    JsonReader reader(content);
    Conversation conversation = readRecord(reader, conversationMembers);
    return reader.atEnd() ? std::optional(std::move(conversation)) : std::nullopt;
}
