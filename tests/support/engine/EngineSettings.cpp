#include "EngineSettings.h"

#include <charconv>
#include <cstdlib>
#include <optional>
#include <sstream>

namespace demo {

namespace {

std::string variable(const char *name)
{
    const char *value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

std::optional<int> wholeNumber(const std::string &text)
{
    int number = 0;
    const char *end = text.data() + text.size();
    const auto [stopped, problem] = std::from_chars(text.data(), end, number);
    return problem == std::errc() && stopped == end && !text.empty() ? std::optional(number) : std::nullopt;
}

int numberOr(const char *name, int otherwise)
{
    const std::optional<int> number = wholeNumber(variable(name));
    return number && *number >= 0 ? *number : otherwise;
}

std::vector<std::string> commaList(const std::string &text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');) {
        if (!part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

std::filesystem::path defaultModelsFolder()
{
    return std::filesystem::path(variable("HOME")) / ".ollama" / "models";
}

} // namespace

EngineAddress parseAddress(const std::string &text)
{
    EngineAddress address;
    std::string rest = text;
    if (const std::size_t scheme = rest.find("://"); scheme != std::string::npos) {
        rest.erase(0, scheme + 3);
    }
    if (const std::size_t slash = rest.find('/'); slash != std::string::npos) {
        rest.erase(slash);
    }
    const std::size_t colon = rest.rfind(':');
    const std::string host = rest.substr(0, colon);
    if (!host.empty()) {
        address.host = host == "localhost" ? "127.0.0.1" : host;
    }
    if (colon != std::string::npos) {
        const std::optional<int> port = wholeNumber(rest.substr(colon + 1));
        if (port && *port >= 0 && *port <= 65535) {
            address.port = *port;
        }
    }
    return address;
}

EngineSettings settingsFromEnvironment()
{
    EngineSettings settings;
    settings.address = parseAddress(variable("OLLAMA_HOST"));
    const std::string models = variable("OLLAMA_MODELS");
    settings.modelsFolder = models.empty() ? defaultModelsFolder() : std::filesystem::path(models);
    const std::string version = variable("DEMO_ENGINE_VERSION");
    settings.version = version.empty() ? "0.32.15" : version;
    settings.discoveryDelay = std::chrono::milliseconds(numberOr("DEMO_ENGINE_READY_MS", 150));
    settings.runner = numberOr("DEMO_ENGINE_RUNNER", 0) != 0;
    settings.faults = variable("DEMO_ENGINE_FAULT");
    settings.installed = commaList(variable("DEMO_ENGINE_INSTALLED"));
    return settings;
}

void readPaceFromEnvironment(Pace &pace)
{
    pace.pullMs = numberOr("DEMO_ENGINE_PULL_MS", pace.pullMs);
    pace.loadMs = numberOr("DEMO_ENGINE_LOAD_MS", pace.loadMs);
    pace.unloadMs = numberOr("DEMO_ENGINE_UNLOAD_MS", pace.unloadMs);
    pace.chunkMs = numberOr("DEMO_ENGINE_CHUNK_MS", pace.chunkMs);
    pace.chunkBytes = std::max(1, numberOr("DEMO_ENGINE_CHUNK_BYTES", pace.chunkBytes));
}

} // namespace demo
