// The engine's wire format: its records from JSON and the bodies of requests, each step a pure function.
#pragma once

#include "core/api/ChatChunk.h"
#include "core/api/ChatRequest.h"
#include "core/api/InstalledModel.h"
#include "core/api/LoadedModel.h"
#include "core/api/ModelDetails.h"
#include "core/api/PullProgress.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QJsonObject>
#include <QList>

#include <optional>

namespace WireFormat {

// The body's object; nothing when it is not valid JSON or something else than an object.
std::optional<QJsonObject> object(const QByteArray &body);

// The same for one line of a stream, whose bytes that are not UTF-8 read as U+FFFD.
std::optional<QJsonObject> lineObject(QByteArrayView line);

// The engine's error text in an answer or a line.
std::optional<QString> error(const QJsonObject &object);

QList<InstalledModel> installedModels(const QJsonObject &answer);
QList<LoadedModel> loadedModels(const QJsonObject &answer);
ModelDetails modelDetails(const QJsonObject &answer);
QString version(const QJsonObject &answer);
PullProgress pullProgress(const QJsonObject &line);
ChatChunk chatChunk(const QJsonObject &line);

QJsonObject chatBody(const ChatRequest &request);

} // namespace WireFormat
