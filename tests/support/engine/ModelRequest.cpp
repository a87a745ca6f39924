#include "ModelRequest.h"

#include "Json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace demo {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qint64 defaultContextLength = 4096;
constexpr double longestSeconds = 1e9;

constexpr auto wholeOptions =
    std::to_array<std::string_view>({"num_ctx", "num_predict", "num_keep", "num_batch", "num_gpu",
                                     "num_thread", "main_gpu", "seed", "top_k", "repeat_last_n"});
constexpr auto fractionalOptions =
    std::to_array<std::string_view>({"temperature", "top_p", "min_p", "typical_p", "repeat_penalty",
                                     "presence_penalty", "frequency_penalty"});

std::optional<double> unitSeconds(std::string_view unit)
{
    struct Unit
    {
        std::string_view name;
        double seconds;
    };
    constexpr auto units = std::to_array<Unit>(
        {{"h", 3600}, {"m", 60}, {"s", 1}, {"ms", 1e-3}, {"us", 1e-6}, {"µs", 1e-6}, {"ns", 1e-9}});
    const auto found =
        std::find_if(units.begin(), units.end(), [unit](const Unit &known) { return known.name == unit; });
    return found == units.end() ? std::nullopt : std::optional(found->seconds);
}

// "5m", "1h30m", "-1m": seconds, or the sentence in which Go refuses the text.
std::variant<double, Refusal> parseDuration(const std::string &text)
{
    const std::string quoted = "\"" + text + "\"";
    std::string_view rest = text;
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) {
        rest.remove_prefix(1);
    }
    if (rest == "0") {
        return 0.0;
    }
    if (rest.empty()) {
        return Refusal{400, "time: invalid duration " + quoted};
    }
    double seconds = 0;
    while (!rest.empty()) {
        // Apple's library has no from_chars for fractions.
        const std::size_t digits = std::min(rest.find_first_not_of("0123456789."), rest.size());
        if (digits == 0) {
            return Refusal{400, "time: invalid duration " + quoted};
        }
        const double number = std::strtod(std::string(rest.substr(0, digits)).c_str(), nullptr);
        rest.remove_prefix(digits);
        const std::string_view unit = rest.substr(0, rest.find_first_of("0123456789."));
        if (unit.empty()) {
            return Refusal{400, "time: missing unit in duration " + quoted};
        }
        const std::optional<double> factor = unitSeconds(unit);
        if (!factor) {
            return Refusal{400, "time: unknown unit \"" + std::string(unit) + "\" in duration " + quoted};
        }
        seconds += number * *factor;
        rest.remove_prefix(unit.size());
    }
    return negative ? -seconds : seconds;
}

KeepAliveAnswer keepAliveFromSeconds(double seconds)
{
    if (seconds < 0) {
        return std::optional<std::chrono::nanoseconds>();
    }
    const std::chrono::duration<double> duration(std::min(seconds, longestSeconds));
    return std::optional(std::chrono::duration_cast<std::chrono::nanoseconds>(duration));
}

} // namespace

std::string modelTextOf(const QJsonObject &body)
{
    const std::string model = toStd(body.value("model"_L1).toString());
    return model.empty() ? toStd(body.value("name"_L1).toString()) : model;
}

std::variant<ModelRequest, Refusal> modelOf(const QJsonObject &body)
{
    const std::string text = modelTextOf(body);
    if (text.empty()) {
        return Refusal{400, "model is required"};
    }
    const std::optional<ModelName> name = ModelName::parse(text);
    if (!name) {
        return Refusal{400, "invalid model name"};
    }
    return ModelRequest{text, *name};
}

KeepAliveAnswer keepAliveOf(const QJsonObject &body)
{
    const QJsonValue value = body.value("keep_alive"_L1);
    if (value.isUndefined() || value.isNull()) {
        return std::optional<std::chrono::nanoseconds>(5min);
    }
    if (value.isDouble()) {
        return keepAliveFromSeconds(value.toDouble());
    }
    if (!value.isString()) {
        return Refusal{400, "Unsupported type: 'keep_alive'"};
    }
    const std::variant<double, Refusal> parsed = parseDuration(toStd(value.toString()));
    if (const Refusal *refusal = std::get_if<Refusal>(&parsed)) {
        return *refusal;
    }
    return keepAliveFromSeconds(std::get<double>(parsed));
}

std::variant<qint64, Refusal> contextLengthOf(const QJsonValue &options)
{
    if (options.isUndefined() || options.isNull()) {
        return defaultContextLength;
    }
    if (!options.isObject()) {
        return Refusal{
            400, "json: cannot unmarshal into Go struct field .options of type map[string]interface {}"};
    }
    const QJsonObject object = options.toObject();
    for (auto option = object.constBegin(); option != object.constEnd(); ++option) {
        const std::string name = toStd(option.key());
        const bool whole = std::find(wholeOptions.begin(), wholeOptions.end(), name) != wholeOptions.end();
        const bool fractional =
            std::find(fractionalOptions.begin(), fractionalOptions.end(), name) != fractionalOptions.end();
        if ((whole || fractional) && !option.value().isDouble() && !option.value().isNull()) {
            const char *type = whole ? "integer" : "float32";
            return Refusal{500, "option \"" + name + "\" must be of type " + type};
        }
    }
    const QJsonValue length = object.value("num_ctx"_L1);
    if (!length.isDouble()) {
        return defaultContextLength;
    }
    // The engine takes no less than this.
    return static_cast<qint64>(std::clamp(std::trunc(length.toDouble()), 4.0, 1e9));
}

} // namespace demo
