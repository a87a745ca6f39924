// What the user sets for one model, and the form in which the settings of all models are stored.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

struct ModelSettings
{
    QString systemPrompt; // put in front of every request unless blank
    double temperature = 0.8;
    double topP = 0.9;
    int numCtx = 4096;        // context length in tokens
    int keepAliveMinutes = 5; // after a reply; 0 unloads the model right away, -1 keeps it

    bool operator==(const ModelSettings &) const = default;
};

// By model name; a model without an entry has the defaults.
using ModelSettingsMap = QMap<QString, ModelSettings>;

// Compact JSON. Nothing when a number is infinite or not a number.
std::optional<QByteArray> encodeModelSettings(const ModelSettingsMap &settings);

// Nothing unless every entry is whole: all members there and of their types.
std::optional<ModelSettingsMap> decodeModelSettings(const QByteArray &stored);
