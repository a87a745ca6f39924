#pragma once

// The models folder: manifests that name layers, and the layers as sparse files of their full length, so
// that a model of gigabytes costs no disk. Usable from any thread.

#include "ModelFacts.h"
#include "ModelName.h"
#include "Timestamps.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace demo {

struct Layer
{
    std::string mediaType;
    // Hexadecimal, without the "sha256:" in front.
    std::string digest;
    qint64 sizeBytes = 0;

    bool operator==(const Layer &) const = default;
};

struct InstalledModel
{
    ModelName name;
    std::string digest;
    qint64 sizeBytes = 0;
    WallTime modified;
};

class ModelStore
{
public:
    // Throws std::filesystem::filesystem_error where the folder cannot be made.
    explicit ModelStore(std::filesystem::path folder);

    // What an earlier engine left unfinished is worth continuing for an hour.
    void removeOldPartials();

    static std::vector<Layer> layersOf(const ModelName &name);

    bool hasLayer(const Layer &layer) const;
    // Bytes of a layer that an interrupted pull has left; 0 when there is none.
    qint64 partialBytes(const Layer &layer) const;
    // False when that is an empty file, with which the engine can do nothing.
    bool canContinue(const Layer &layer) const;
    void savePartial(const Layer &layer, qint64 completed);
    // From the first to the second call, what is saved of the layer counts as not written down yet.
    void beginPartial(const Layer &layer);
    void endPartial(const Layer &layer);
    // The engine is to end at once: what is not written down is lost, and an empty file left of it. Nothing
    // is saved any more.
    void loseUnwritten();
    void finishLayer(const Layer &layer);
    void dropLayer(const Layer &layer);

    void writeManifest(const ModelName &name, const std::vector<Layer> &layers);
    void install(const ModelName &name);
    // False when there is no such model. Layers that no other model names go with it.
    bool remove(const ModelName &name);

    std::optional<InstalledModel> find(const ModelName &name) const;
    // Newest first.
    std::vector<InstalledModel> list() const;

private:
    std::filesystem::path blobPath(const Layer &layer) const;
    std::filesystem::path partialPath(const Layer &layer) const;
    std::filesystem::path recordPath(const Layer &layer) const;
    std::filesystem::path manifestPath(const ModelName &name) const;
    std::optional<InstalledModel> readManifest(const ModelName &name) const;
    std::vector<InstalledModel> readAll() const;

    const std::filesystem::path m_folder;
    std::vector<Layer> m_unwritten;
    bool m_isLost = false;
    mutable std::mutex m_mutex;
};

} // namespace demo
