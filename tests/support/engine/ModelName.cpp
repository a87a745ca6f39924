#include "ModelName.h"

#include <algorithm>
#include <vector>

namespace demo {

namespace {

bool isWordCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool isValidPart(std::string_view part, std::size_t longest, std::string_view extra)
{
    if (part.empty() || part.size() > longest || !isWordCharacter(part.front())) {
        return false;
    }
    return std::all_of(part.begin(), part.end(), [extra](char c) {
        return isWordCharacter(c) || extra.find(c) != std::string_view::npos;
    });
}

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace

std::optional<ModelName> ModelName::parse(std::string_view text)
{
    ModelName name;
    const std::size_t slash = text.rfind('/');
    const std::size_t colon = text.rfind(':');
    if (colon != std::string_view::npos && (slash == std::string_view::npos || colon > slash)) {
        name.tag = text.substr(colon + 1);
        text = text.substr(0, colon);
    }
    const std::vector<std::string_view> parts = split(text, '/');
    if (parts.size() > 3) {
        return std::nullopt;
    }
    name.model = parts.back();
    if (parts.size() > 1) {
        name.space = parts[parts.size() - 2];
    }
    if (parts.size() > 2) {
        name.host = parts.front();
    }
    const bool valid = isValidPart(name.host, 350, "-.:") && isValidPart(name.space, 80, "-") &&
                       isValidPart(name.model, 80, "-.") && isValidPart(name.tag, 80, "-.");
    return valid ? std::optional(name) : std::nullopt;
}

std::string ModelName::listed() const
{
    const ModelName defaults;
    std::string text = model + ":" + tag;
    if (space != defaults.space || host != defaults.host) {
        text = space + "/" + text;
    }
    if (host != defaults.host) {
        text = host + "/" + text;
    }
    return text;
}

std::filesystem::path ModelName::relativePath() const
{
    return std::filesystem::path(host) / space / model / tag;
}

} // namespace demo
