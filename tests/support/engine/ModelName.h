#pragma once

// A model's name as the engine understands it: host, namespace, model and tag, the missing ones filled in.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace demo {

struct ModelName
{
    std::string host = "registry.ollama.ai";
    std::string space = "library";
    std::string model;
    std::string tag = "latest";

    bool operator==(const ModelName &) const = default;

    // Nothing for a name that the engine refuses as invalid.
    static std::optional<ModelName> parse(std::string_view text);

    // As listed: without the parts that are the defaults, always with the tag.
    std::string listed() const;
    // Where its manifest lies below the folder of manifests.
    std::filesystem::path relativePath() const;
};

} // namespace demo
