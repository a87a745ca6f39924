#include "ModelFacts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace demo {

namespace {

struct Family
{
    std::string_view prefix;
    std::string_view family;
    std::string_view defaultParameters;
    qint64 contextLength;
    qint64 embeddingLength;
    int blockCount;
    std::string_view capabilities;
    std::string_view license;
};

constexpr std::string_view apache =
    "Apache License\nVersion 2.0, January 2004\nhttp://www.apache.org/licenses/\n";
constexpr std::string_view mit =
    "MIT License\n\nPermission is hereby granted, free of charge, to any person\n";
constexpr std::string_view llama = "LLAMA COMMUNITY LICENSE AGREEMENT\n";
constexpr std::string_view gemma = "Gemma Terms of Use\n\nLast modified: February 21, 2024\n";

// The first entry whose prefix fits wins, so the longer prefixes come first.
constexpr auto families = std::to_array<Family>({
    {"qwen3", "qwen3", "8B", 40960, 4096, 36, "completion tools thinking", apache},
    {"qwen2.5-coder", "qwen2", "7B", 32768, 3584, 28, "completion tools insert", apache},
    {"qwen2.5", "qwen2", "7B", 32768, 3584, 28, "completion tools", apache},
    {"llama3.2", "llama", "3B", 131072, 3072, 28, "completion tools", llama},
    {"llama3.1", "llama", "8B", 131072, 4096, 32, "completion tools", llama},
    {"llama", "llama", "8B", 8192, 4096, 32, "completion", llama},
    {"phi3.5", "phi3", "3.8B", 131072, 3072, 32, "completion", mit},
    {"gemma2", "gemma2", "9B", 8192, 3584, 42, "completion", gemma},
    {"gemma3", "gemma3", "4B", 131072, 2560, 34, "completion vision", gemma},
    {"mistral-nemo", "llama", "12.2B", 1024000, 5120, 40, "completion tools", apache},
    {"mistral", "llama", "7.2B", 32768, 4096, 32, "completion tools", apache},
    {"deepseek-r1", "qwen2", "7.6B", 131072, 3584, 28, "completion thinking", mit},
    {"gpt-oss", "gptoss", "20.9B", 131072, 2880, 24, "completion tools thinking", apache},
    {"", "llama", "1.1B", 2048, 2048, 22, "completion", apache},
});

struct KnownSize
{
    std::string_view model;
    std::string_view tag;
    qint64 bytes;
};

constexpr auto knownSizes = std::to_array<KnownSize>({
    {"qwen3", "0.6b", 522'653'767},
    {"qwen3", "1.7b", 1'359'293'444},
    {"qwen3", "4b", 2'497'293'931},
    {"qwen3", "latest", 5'225'388'164},
    {"qwen3", "8b", 5'225'388'164},
    {"llama3.2", "3b", 2'019'393'189},
    {"llama3.2", "latest", 2'019'393'189},
    {"llama3.2", "1b", 1'321'098'329},
    {"llama3.1", "8b", 4'982'000'000},
    {"llama3.1", "latest", 4'982'000'000},
    {"phi3.5", "latest", 2'176'178'843},
    {"qwen2.5-coder", "7b", 4'503'000'000},
    {"qwen2.5", "7b", 4'502'000'000},
    {"gemma2", "9b", 5'493'000'000},
    {"mistral-nemo", "latest", 7'071'713'232},
});

std::vector<std::string> words(std::string_view text)
{
    std::vector<std::string> list;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        list.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return list;
}

const Family &familyOf(const std::string &model)
{
    return *std::find_if(families.begin(), families.end(),
                         [&model](const Family &family) { return model.starts_with(family.prefix); });
}

// A tag such as "0.6b" or "7b-instruct" says how large the model is.
std::string parameterSizeFromTag(const std::string &tag)
{
    const std::size_t end = tag.find_first_not_of("0123456789.");
    const bool sized = end != std::string::npos && end > 0 && (tag[end] == 'b' || tag[end] == 'B');
    return sized ? tag.substr(0, end) + "B" : std::string();
}

qint64 sizeOf(const ModelName &name)
{
    const auto known = std::find_if(knownSizes.begin(), knownSizes.end(), [&name](const KnownSize &size) {
        return size.model == name.model && size.tag == name.tag;
    });
    return known == knownSizes.end() ? 1'034'567'890 : known->bytes;
}

} // namespace

bool ModelFacts::can(const std::string &capability) const
{
    return std::find(capabilities.begin(), capabilities.end(), capability) != capabilities.end();
}

ModelFacts factsFor(const ModelName &name)
{
    const Family &family = familyOf(name.model);
    ModelFacts facts;
    facts.family = family.family;
    facts.parameterSize = parameterSizeFromTag(name.tag);
    if (facts.parameterSize.empty()) {
        facts.parameterSize = family.defaultParameters;
    }
    facts.sizeBytes = sizeOf(name);
    facts.parameterCount = std::llround(std::strtod(facts.parameterSize.c_str(), nullptr) * 1e9);
    facts.contextLength = family.contextLength;
    if (name.model == "qwen3" && name.tag.starts_with("4b")) {
        facts.contextLength = 262144;
    }
    facts.embeddingLength = family.embeddingLength;
    facts.blockCount = family.blockCount;
    facts.capabilities = words(family.capabilities);
    facts.license = family.license;
    facts.chatTemplate = "{{- if .System }}{{ .System }}\n{{ end }}{{ .Prompt }}{{ .Response }}";
    facts.parameters = {"stop                           \"<|im_start|>\"",
                        "stop                           \"<|im_end|>\"",
                        "temperature                    0.6"};
    return facts;
}

} // namespace demo
