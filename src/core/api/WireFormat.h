// The engine's wire format: its records from JSON and the bodies of requests, each step a pure function that
// any thread may call. Records are read straight from the text, which takes a few times its size at most:
// a tree of JSON values takes up to a hundred times as much.
#pragma once

#include "core/api/ChatChunk.h"
#include "core/api/ChatRequest.h"
#include "core/api/InstalledModel.h"
#include "core/api/LoadedModel.h"
#include "core/api/ModelDetails.h"
#include "core/api/PullProgress.h"

#include <QByteArrayView>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

// A field that is missing or of another type takes the record's default, and so does every field of a text
// that is no JSON object.
namespace WireFormat {

// A list with more elements makes its whole text unreadable.
constexpr qsizetype longestList = 100'000;

// A model with a longer name is not listed; no name in use comes near it.
constexpr qsizetype longestName = 1000;

// Lists of which an element has another type are empty.
QList<InstalledModel> installedModels(QByteArrayView answer);
QList<LoadedModel> loadedModels(QByteArrayView answer);
ModelDetails modelDetails(QByteArrayView answer);
QString version(QByteArrayView answer);

// The engine's error text in the body of an answer.
std::optional<QString> error(QByteArrayView body);

// One line of a stream. Bytes of it that are not UTF-8 read as U+FFFD.
template <class Record>
struct Line
{
    Record record;
    std::optional<QString> error; // the engine's error text, which ends the stream

    bool operator==(const Line &) const = default;
};

// Nothing for what is no JSON object.
std::optional<Line<PullProgress>> pullLine(QByteArrayView line);
std::optional<Line<ChatChunk>> chatLine(QByteArrayView line);

QJsonObject chatBody(const ChatRequest &request);

} // namespace WireFormat
