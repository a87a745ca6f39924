#include "ModelStore.h"

#include "Json.h"

#include <QCryptographicHash>
#include <QJsonArray>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace demo {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

std::string sha256(std::string_view text)
{
    const auto bytes = QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

std::string readFile(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// In the engine's words, which do not begin with a capital.
[[noreturn]] void failToWrite(const fs::path &path, int code)
{
    std::string reason = std::generic_category().message(code);
    reason.front() = static_cast<char>(std::tolower(reason.front()));
    throw std::runtime_error("open " + path.string() + ": " + reason);
}

void writeFile(const fs::path &path, const std::string &text)
{
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    errno = 0;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << text << std::flush;
    if (!file) {
        failToWrite(path, errno);
    }
}

void makeSparse(const fs::path &path, qint64 size)
{
    std::error_code problem;
    if (!fs::exists(path, problem)) {
        writeFile(path, std::string());
    }
    fs::resize_file(path, static_cast<std::uintmax_t>(size), problem);
    if (problem) {
        failToWrite(path, problem.value());
    }
}

WallTime modificationTime(const fs::path &path)
{
    std::error_code problem;
    const fs::file_time_type time = fs::last_write_time(path, problem);
    if (problem) {
        return {};
    }
    const auto age = fs::file_time_type::clock::now() - time;
    return std::chrono::system_clock::now() - std::chrono::duration_cast<WallTime::duration>(age);
}

Layer layer(std::string mediaType, const std::string &seed, qint64 size)
{
    return Layer{"application/vnd.ollama.image." + mediaType, sha256(seed + "/" + mediaType), size};
}

QJsonObject layerObject(const Layer &layer)
{
    return QJsonObject{{"mediaType"_L1, toQt(layer.mediaType)},
                       {"digest"_L1, "sha256:"_L1 + toQt(layer.digest)},
                       {"size"_L1, layer.sizeBytes}};
}

std::vector<Layer> layersInManifest(const std::string &text)
{
    std::vector<Layer> layers;
    const QJsonArray array = parseObject(text).value_or(QJsonObject()).value("layers"_L1).toArray();
    for (const auto &value : array) {
        const QJsonObject object = value.toObject();
        layers.push_back(Layer{toStd(object.value("mediaType"_L1).toString()),
                               toStd(object.value("digest"_L1).toString().mid(7)),
                               object.value("size"_L1).toInteger()});
    }
    return layers;
}

} // namespace

ModelStore::ModelStore(fs::path folder) : m_folder(std::move(folder))
{
    fs::create_directories(m_folder / "blobs");
    fs::create_directories(m_folder / "manifests");
}

void ModelStore::removeOldPartials()
{
    const std::lock_guard lock(m_mutex);
    std::error_code ignored;
    std::vector<fs::path> old;
    for (const fs::directory_entry &entry : fs::directory_iterator(m_folder / "blobs", ignored)) {
        const bool partial = entry.path().filename().string().find("-partial") != std::string::npos;
        const auto age = std::chrono::system_clock::now() - modificationTime(entry.path());
        if (partial && age > std::chrono::hours(1)) {
            old.push_back(entry.path());
        }
    }
    for (const fs::path &path : old) {
        fs::remove(path, ignored);
    }
}

std::vector<Layer> ModelStore::layersOf(const ModelName &name)
{
    const ModelFacts facts = factsFor(name);
    const std::string seed = name.listed();
    const qint64 projector = facts.sizeBytes / 25;
    return {layer("model", seed, facts.sizeBytes - projector - 13'000), layer("projector", seed, projector),
            layer("template", facts.family, 1'482), layer("license", facts.license, 11'343),
            layer("params", facts.family, 175)};
}

bool ModelStore::hasLayer(const Layer &layer) const
{
    const std::lock_guard lock(m_mutex);
    std::error_code ignored;
    return fs::exists(blobPath(layer), ignored);
}

qint64 ModelStore::partialBytes(const Layer &layer) const
{
    const std::lock_guard lock(m_mutex);
    std::error_code ignored;
    if (!fs::exists(partialPath(layer), ignored)) {
        return 0;
    }
    const QJsonObject record = parseObject(readFile(recordPath(layer))).value_or(QJsonObject());
    return std::clamp<qint64>(record.value("Completed"_L1).toInteger(), 0, layer.sizeBytes);
}

bool ModelStore::canContinue(const Layer &layer) const
{
    const std::lock_guard lock(m_mutex);
    std::error_code ignored;
    return !fs::exists(partialPath(layer), ignored) || fs::file_size(partialPath(layer), ignored) > 0;
}

void ModelStore::beginPartial(const Layer &layer)
{
    const std::lock_guard lock(m_mutex);
    m_unwritten.push_back(layer);
}

void ModelStore::endPartial(const Layer &layer)
{
    const std::lock_guard lock(m_mutex);
    m_unwritten.erase(std::find(m_unwritten.begin(), m_unwritten.end(), layer));
}

void ModelStore::loseUnwritten()
{
    const std::lock_guard lock(m_mutex);
    m_isLost = true;
    for (const Layer &layer : m_unwritten) {
        std::error_code ignored;
        fs::resize_file(partialPath(layer), 0, ignored);
        fs::remove(recordPath(layer), ignored);
    }
}

void ModelStore::savePartial(const Layer &layer, qint64 completed)
{
    const std::lock_guard lock(m_mutex);
    if (m_isLost) {
        return;
    }
    makeSparse(partialPath(layer), layer.sizeBytes);
    writeFile(
        recordPath(layer),
        compact({{"N"_L1, 0}, {"Offset"_L1, 0}, {"Size"_L1, layer.sizeBytes}, {"Completed"_L1, completed}}));
}

void ModelStore::finishLayer(const Layer &layer)
{
    const std::lock_guard lock(m_mutex);
    if (m_isLost) {
        return;
    }
    std::error_code ignored;
    fs::rename(partialPath(layer), blobPath(layer), ignored);
    makeSparse(blobPath(layer), layer.sizeBytes);
    fs::remove(recordPath(layer), ignored);
}

void ModelStore::dropLayer(const Layer &layer)
{
    const std::lock_guard lock(m_mutex);
    std::error_code ignored;
    fs::remove(blobPath(layer), ignored);
    fs::remove(partialPath(layer), ignored);
    fs::remove(recordPath(layer), ignored);
}

void ModelStore::writeManifest(const ModelName &name, const std::vector<Layer> &layers)
{
    const std::lock_guard lock(m_mutex);
    QJsonArray array;
    for (const Layer &layer : layers) {
        array.append(layerObject(layer));
    }
    writeFile(manifestPath(name), compact({{"schemaVersion"_L1, 2}, {"layers"_L1, array}}));
}

void ModelStore::install(const ModelName &name)
{
    const std::vector<Layer> layers = layersOf(name);
    for (const Layer &layer : layers) {
        finishLayer(layer);
    }
    writeManifest(name, layers);
}

bool ModelStore::remove(const ModelName &name)
{
    const std::lock_guard lock(m_mutex);
    const fs::path path = manifestPath(name);
    const std::vector<Layer> layers = layersInManifest(readFile(path));
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored) || !fs::remove(path, ignored)) {
        return false;
    }
    std::set<std::string> used;
    for (const InstalledModel &other : readAll()) {
        for (const Layer &layer : layersInManifest(readFile(manifestPath(other.name)))) {
            used.insert(layer.digest);
        }
    }
    for (const Layer &layer : layers) {
        if (!used.contains(layer.digest)) {
            fs::remove(blobPath(layer), ignored);
        }
    }
    for (fs::path parent = path.parent_path(); parent != m_folder / "manifests";
         parent = parent.parent_path()) {
        if (!fs::remove(parent, ignored)) {
            break;
        }
    }
    return true;
}

std::optional<InstalledModel> ModelStore::find(const ModelName &name) const
{
    const std::lock_guard lock(m_mutex);
    return readManifest(name);
}

std::vector<InstalledModel> ModelStore::list() const
{
    const std::lock_guard lock(m_mutex);
    // The engine looks its manifests up by a glob pattern, in which such a folder means something else.
    if (m_folder.string().find_first_of("[*?") != std::string::npos) {
        return {};
    }
    std::vector<InstalledModel> models = readAll();
    std::stable_sort(models.begin(), models.end(), [](const InstalledModel &a, const InstalledModel &b) {
        return a.modified > b.modified;
    });
    return models;
}

fs::path ModelStore::blobPath(const Layer &layer) const
{
    return m_folder / "blobs" / ("sha256-" + layer.digest);
}

fs::path ModelStore::partialPath(const Layer &layer) const
{
    return blobPath(layer).string() + "-partial";
}

fs::path ModelStore::recordPath(const Layer &layer) const
{
    return blobPath(layer).string() + "-partial-0";
}

fs::path ModelStore::manifestPath(const ModelName &name) const
{
    return m_folder / "manifests" / name.relativePath();
}

std::optional<InstalledModel> ModelStore::readManifest(const ModelName &name) const
{
    const fs::path path = manifestPath(name);
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) {
        return std::nullopt;
    }
    const std::string text = readFile(path);
    InstalledModel model{name, sha256(name.listed() + text), 0, modificationTime(path)};
    for (const Layer &layer : layersInManifest(text)) {
        model.sizeBytes += layer.sizeBytes;
    }
    return model;
}

std::vector<InstalledModel> ModelStore::readAll() const
{
    std::vector<InstalledModel> models;
    std::error_code ignored;
    const fs::path root = m_folder / "manifests";
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(root, ignored)) {
        const fs::path relative = entry.path().lexically_relative(root);
        if (std::distance(relative.begin(), relative.end()) != 4) {
            continue;
        }
        auto part = relative.begin();
        ModelName name;
        for (std::string *field : {&name.host, &name.space, &name.model, &name.tag}) {
            *field = (part++)->string();
        }
        if (std::optional<InstalledModel> model = readManifest(name)) {
            models.push_back(*model);
        }
    }
    return models;
}

} // namespace demo
