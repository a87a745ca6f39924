#include "core/api/WireFormat.h"

#include "core/api/Fields.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace WireFormat {

std::optional<QJsonObject> object(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

std::optional<QJsonObject> lineObject(QByteArrayView line)
{
    QJsonParseError problem;
    QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(line.data(), line.size()), &problem);
    if (problem.error == QJsonParseError::IllegalUTF8String)
        document = QJsonDocument::fromJson(QString::fromUtf8(line).toUtf8());
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

std::optional<QString> error(const QJsonObject &object)
{
    return textIn(object.value("error"_L1));
}

QList<InstalledModel> installedModels(const QJsonObject &answer)
{
    QList<InstalledModel> models;
    const QList<QJsonObject> entries = objectsField(answer, "models"_L1);
    for (const QJsonObject &entry : entries) {
        const std::optional<QString> name = textIn(entry.value("name"_L1));
        if (!name)
            continue;
        const QJsonObject details = entry.value("details"_L1).toObject();
        models.append({.name = *name,
                       .size = integerField(entry, "size"_L1),
                       .family = textField(details, "family"_L1),
                       .parameterSize = textField(details, "parameter_size"_L1),
                       .quantization = textField(details, "quantization_level"_L1)});
    }
    return models;
}

QList<LoadedModel> loadedModels(const QJsonObject &answer)
{
    QList<LoadedModel> models;
    const QList<QJsonObject> entries = objectsField(answer, "models"_L1);
    for (const QJsonObject &entry : entries) {
        std::optional<QString> name = textIn(entry.value("name"_L1));
        if (!name)
            name = textIn(entry.value("model"_L1));
        if (name)
            models.append({.name = *name, .size = integerField(entry, "size"_L1)});
    }
    return models;
}

ModelDetails modelDetails(const QJsonObject &answer)
{
    const QJsonObject details = answer.value("details"_L1).toObject();
    ModelDetails result{.parameters = textField(answer, "parameters"_L1),
                        .contextLength = {},
                        .quantization = textField(details, "quantization_level"_L1),
                        .family = textField(details, "family"_L1),
                        .parameterSize = textField(details, "parameter_size"_L1),
                        .license = textField(answer, "license"_L1),
                        .capabilities = textsField(answer, "capabilities"_L1)};
    const QJsonObject info = answer.value("model_info"_L1).toObject();
    for (auto entry = info.begin(); entry != info.end(); ++entry) {
        const std::optional<qint64> number = integerIn(entry.value());
        if (number && entry.key().endsWith(".context_length"_L1))
            result.contextLength = number;
    }
    return result;
}

QString version(const QJsonObject &answer)
{
    return textField(answer, "version"_L1);
}

PullProgress pullProgress(const QJsonObject &line)
{
    return {.status = textField(line, "status"_L1),
            .digest = textIn(line.value("digest"_L1)),
            .total = integerField(line, "total"_L1),
            .completed = integerField(line, "completed"_L1)};
}

ChatChunk chatChunk(const QJsonObject &line)
{
    const QJsonObject message = line.value("message"_L1).toObject();
    return {.content = textField(message, "content"_L1),
            .thinking = textField(message, "thinking"_L1),
            .done = line.value("done"_L1).toBool(),
            .evalCount = integerField(line, "eval_count"_L1),
            .evalDuration = integerField(line, "eval_duration"_L1)};
}

QJsonObject chatBody(const ChatRequest &request)
{
    QJsonArray messages;
    for (const ChatRequestMessage &message : request.messages)
        messages.append(QJsonObject{{"role"_L1, message.role}, {"content"_L1, message.content}});
    QJsonObject body{{"model"_L1, request.model},
                     {"messages"_L1, messages},
                     {"stream"_L1, true},
                     {"options"_L1, request.options}};
    if (request.think)
        body.insert("think"_L1, *request.think);
    if (!request.keepAlive.isUndefined())
        body.insert("keep_alive"_L1, request.keepAlive);
    return body;
}

} // namespace WireFormat
