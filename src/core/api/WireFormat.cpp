#include "core/api/WireFormat.h"

#include "core/api/LenientJson.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using namespace LenientJson;

namespace {

using Kind = JsonReader::Kind;
using PullLine = WireFormat::Line<PullProgress>;
using ChatLine = WireFormat::Line<ChatChunk>;

struct InstalledEntry
{
    std::optional<QString> name;
    InstalledModel model;
};

struct LoadedEntry
{
    std::optional<QString> name;
    std::optional<QString> model;
    qint64 size = 0;
};

template <class Model>
struct Models
{
    QList<Model> models;
};

struct Version
{
    QString version;
};

struct Failure
{
    std::optional<QString> error;
};

const Member<InstalledModel> installedDetails[] = {
    {"family"_L1, field<&InstalledModel::family>},
    {"parameter_size"_L1, field<&InstalledModel::parameterSize>},
    {"quantization_level"_L1, field<&InstalledModel::quantization>},
};

void readInstalledDetails(JsonReader &reader, InstalledEntry &entry)
{
    entry.model.family = entry.model.parameterSize = entry.model.quantization = QString();
    readObject(reader, entry.model, installedDetails);
}

const Member<InstalledEntry> installedMembers[] = {
    {"name"_L1, field<&InstalledEntry::name>},
    {"size"_L1, field<&InstalledEntry::model, &InstalledModel::size>},
    {"details"_L1, readInstalledDetails},
};

const Member<LoadedEntry> loadedMembers[] = {
    {"name"_L1, field<&LoadedEntry::name>},
    {"model"_L1, field<&LoadedEntry::model>},
    {"size"_L1, field<&LoadedEntry::size>},
};

std::optional<InstalledModel> modelOf(InstalledEntry &entry)
{
    if (!entry.name || entry.name->size() > WireFormat::longestName)
        return std::nullopt;
    entry.model.name = std::move(*entry.name);
    return std::move(entry.model);
}

std::optional<LoadedModel> modelOf(LoadedEntry &entry)
{
    std::optional<QString> &name = entry.name ? entry.name : entry.model;
    if (!name || name->size() > WireFormat::longestName)
        return std::nullopt;
    return LoadedModel{.name = std::move(*name), .size = entry.size};
}

template <auto &members, class Entry, class Model>
void readModels(JsonReader &reader, Models<Model> &answer)
{
    answer.models.clear();
    const auto take = [&] {
        Entry entry;
        const bool isObject = readObject(reader, entry, members);
        if (std::optional<Model> model = modelOf(entry))
            answer.models.append(std::move(*model));
        return isObject;
    };
    if (!readArray(reader, WireFormat::longestList, take))
        answer.models.clear();
}

void readCapabilities(JsonReader &reader, ModelDetails &details)
{
    details.capabilities.clear();
    const auto take = [&] {
        std::optional<QString> text;
        read(reader, text);
        details.capabilities.append(text.value_or(QString()));
        return text.has_value();
    };
    if (!readArray(reader, WireFormat::longestList, take))
        details.capabilities.clear();
}

const Member<ModelDetails> detailsMembers[] = {
    {"family"_L1, field<&ModelDetails::family>},
    {"parameter_size"_L1, field<&ModelDetails::parameterSize>},
    {"quantization_level"_L1, field<&ModelDetails::quantization>},
};

void readDetails(JsonReader &reader, ModelDetails &details)
{
    details.family = details.parameterSize = details.quantization = QString();
    readObject(reader, details, detailsMembers);
}

// Of several lengths, the last one counts.
void readInfo(JsonReader &reader, ModelDetails &details)
{
    details.contextLength.reset();
    if (reader.next() != Kind::object) {
        reader.skip();
        return;
    }
    reader.beginObject();
    while (const std::optional<QByteArrayView> name = reader.nextMember()) {
        if (name->endsWith(".context_length") && reader.next() == Kind::number)
            details.contextLength = reader.integer();
        else
            reader.skip();
    }
}

const Member<ModelDetails> showMembers[] = {
    {"parameters"_L1, field<&ModelDetails::parameters>},
    {"license"_L1, field<&ModelDetails::license>},
    {"capabilities"_L1, readCapabilities},
    {"details"_L1, readDetails},
    {"model_info"_L1, readInfo},
};

const Member<Models<InstalledModel>> tagsMembers[] = {
    {"models"_L1, readModels<installedMembers, InstalledEntry, InstalledModel>}};
const Member<Models<LoadedModel>> psMembers[] = {
    {"models"_L1, readModels<loadedMembers, LoadedEntry, LoadedModel>}};
const Member<Version> versionMembers[] = {{"version"_L1, field<&Version::version>}};
const Member<Failure> failureMembers[] = {{"error"_L1, field<&Failure::error>}};

const Member<PullLine> pullMembers[] = {
    {"error"_L1, field<&PullLine::error>},
    {"status"_L1, field<&PullLine::record, &PullProgress::status>},
    {"digest"_L1, field<&PullLine::record, &PullProgress::digest>},
    {"total"_L1, field<&PullLine::record, &PullProgress::total>},
    {"completed"_L1, field<&PullLine::record, &PullProgress::completed>},
};

const Member<ChatChunk> messageMembers[] = {
    {"content"_L1, field<&ChatChunk::content>},
    {"thinking"_L1, field<&ChatChunk::thinking>},
};

void readMessage(JsonReader &reader, ChatLine &line)
{
    line.record.content = line.record.thinking = QString();
    readObject(reader, line.record, messageMembers);
}

const Member<ChatLine> chatMembers[] = {
    {"error"_L1, field<&ChatLine::error>},
    {"message"_L1, readMessage},
    {"done"_L1, field<&ChatLine::record, &ChatChunk::done>},
    {"eval_count"_L1, field<&ChatLine::record, &ChatChunk::evalCount>},
    {"eval_duration"_L1, field<&ChatLine::record, &ChatChunk::evalDuration>},
};

template <class Line, std::size_t count>
std::optional<Line> lineIn(QByteArrayView text, const Member<Line> (&members)[count])
{
    std::optional<Line> line = recordIn(text, members);
    if (!line && !text.isValidUtf8())
        line = recordIn(QString::fromUtf8(text).toUtf8(), members);
    return line;
}

} // namespace

namespace WireFormat {

QList<InstalledModel> installedModels(QByteArrayView answer)
{
    return recordIn(answer, tagsMembers).value_or(Models<InstalledModel>()).models;
}

QList<LoadedModel> loadedModels(QByteArrayView answer)
{
    return recordIn(answer, psMembers).value_or(Models<LoadedModel>()).models;
}

ModelDetails modelDetails(QByteArrayView answer)
{
    return recordIn(answer, showMembers).value_or(ModelDetails());
}

QString version(QByteArrayView answer)
{
    return recordIn(answer, versionMembers).value_or(Version()).version;
}

std::optional<QString> error(QByteArrayView body)
{
    return recordIn(body, failureMembers).value_or(Failure()).error;
}

std::optional<Line<PullProgress>> pullLine(QByteArrayView line)
{
    return lineIn(line, pullMembers);
}

std::optional<Line<ChatChunk>> chatLine(QByteArrayView line)
{
    return lineIn(line, chatMembers);
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
