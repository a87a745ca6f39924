// Lenient reading of the engine's JSON into records: a member of the wrong type counts as missing, and of one
// that is there twice the last counts. Pure functions.
#pragma once

#include "platform/text/JsonReader.h"

#include <QLatin1StringView>
#include <QString>

#include <algorithm>
#include <optional>

namespace LenientJson {

// Each takes the value that comes next, and leaves nothing but a default where that has another type.
inline void read(JsonReader &reader, std::optional<QString> &text)
{
    text.reset();
    if (reader.next() == JsonReader::Kind::string)
        text = reader.string();
    else
        reader.skip();
}

inline void read(JsonReader &reader, QString &text)
{
    std::optional<QString> known;
    read(reader, known);
    text = std::move(known).value_or(QString());
}

inline void read(JsonReader &reader, std::optional<qint64> &number)
{
    number.reset();
    if (reader.next() == JsonReader::Kind::number)
        number = reader.integer();
    else
        reader.skip();
}

inline void read(JsonReader &reader, qint64 &number)
{
    std::optional<qint64> known;
    read(reader, known);
    number = known.value_or(0);
}

inline void read(JsonReader &reader, bool &value)
{
    value = false;
    if (reader.next() == JsonReader::Kind::boolean)
        value = reader.boolean();
    else
        reader.skip();
}

// What a member's name leads to.
template <class Record>
struct Member
{
    QLatin1StringView key;
    void (*read)(JsonReader &, Record &);
};

// A member that is read into a field of the record, or into a field of such a field.
template <auto... fields>
void field(JsonReader &reader, auto &record)
{
    read(reader, (record.*....*fields));
}

// Reads the object that comes next into `record`; false, and nothing is changed, where another value does.
template <class Record, std::size_t count>
bool readObject(JsonReader &reader, Record &record, const Member<Record> (&members)[count])
{
    if (reader.next() != JsonReader::Kind::object) {
        reader.skip();
        return false;
    }
    reader.beginObject();
    while (const std::optional<QByteArrayView> name = reader.nextMember()) {
        const QLatin1StringView key(*name);
        const auto *const known = std::ranges::find(members, key, &Member<Record>::key);
        if (known == std::end(members))
            reader.skip();
        else
            known->read(reader, record);
    }
    return true;
}

// Steps through the array that comes next: `take` reads one element, and says whether it is of its kind.
// False where one is not, or where another value than an array comes. An array of more than `most` fails the
// reader.
template <class Take>
bool readArray(JsonReader &reader, qsizetype most, Take take)
{
    if (reader.next() != JsonReader::Kind::array) {
        reader.skip();
        return false;
    }
    bool isSound = true;
    reader.beginArray();
    for (qsizetype count = 0; reader.nextElement(); ++count) {
        if (count == most)
            reader.fail();
        else if (isSound)
            isSound = take();
        else
            reader.skip();
    }
    return isSound;
}

// The record that the whole of `text` spells; nothing when it is no JSON object.
template <class Record, std::size_t count>
std::optional<Record> recordIn(QByteArrayView text, const Member<Record> (&members)[count])
{
    JsonReader reader(text);
    Record record;
    const bool isObject = readObject(reader, record, members);
    return isObject && reader.atEnd() ? std::optional(std::move(record)) : std::nullopt;
}

} // namespace LenientJson
