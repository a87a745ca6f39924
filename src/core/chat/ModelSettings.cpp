#include "core/chat/ModelSettings.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr auto systemPromptKey = "systemPrompt"_L1;
constexpr auto temperatureKey = "temperature"_L1;
constexpr auto topPKey = "topP"_L1;
constexpr auto numCtxKey = "numCtx"_L1;
constexpr auto keepAliveMinutesKey = "keepAliveMinutes"_L1;

// A number without a fraction, however it is written: 4096, 4096.0 and 4.096e3 are one.
std::optional<int> wholeNumber(const QJsonValue &value)
{
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (!(number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()) ||
        number != std::floor(number))
        return std::nullopt;
    return static_cast<int>(number);
}

std::optional<ModelSettings> decodeEntry(const QJsonObject &entry)
{
    const QJsonValue systemPrompt = entry.value(systemPromptKey);
    const QJsonValue temperature = entry.value(temperatureKey);
    const QJsonValue topP = entry.value(topPKey);
    const std::optional<int> numCtx = wholeNumber(entry.value(numCtxKey));
    const std::optional<int> keepAliveMinutes = wholeNumber(entry.value(keepAliveMinutesKey));
    if (!systemPrompt.isString() || !temperature.isDouble() || !topP.isDouble() || !numCtx ||
        !keepAliveMinutes)
        return std::nullopt;
    return ModelSettings{systemPrompt.toString(), temperature.toDouble(), topP.toDouble(), *numCtx,
                         *keepAliveMinutes};
}

} // namespace

std::optional<QByteArray> encodeModelSettings(const ModelSettingsMap &settings)
{
    QJsonObject entries;
    for (auto entry = settings.cbegin(); entry != settings.cend(); ++entry) {
        if (!std::isfinite(entry->temperature) || !std::isfinite(entry->topP))
            return std::nullopt;
        entries.insert(entry.key(), QJsonObject{
                                        {systemPromptKey, entry->systemPrompt},
                                        {temperatureKey, entry->temperature},
                                        {topPKey, entry->topP},
                                        {numCtxKey, entry->numCtx},
                                        {keepAliveMinutesKey, entry->keepAliveMinutes},
                                    });
    }
    return QJsonDocument(entries).toJson(QJsonDocument::Compact);
}

std::optional<ModelSettingsMap> decodeModelSettings(const QByteArray &stored)
{
    const QJsonDocument document = QJsonDocument::fromJson(stored);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject entries = document.object();
    ModelSettingsMap settings;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        const std::optional<ModelSettings> decoded =
            entry->isObject() ? decodeEntry(entry->toObject()) : std::nullopt;
        if (!decoded)
            return std::nullopt;
        settings.insert(entry.key(), *decoded);
    }
    return settings;
}
