#pragma once

// The narrow bridge between Qt's JSON values and the standard strings that the rest of the program uses.

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace demo {

inline QString toQt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string toStd(const QString &text)
{
    return text.toStdString();
}

inline std::string compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

inline std::optional<QJsonObject> parseObject(std::string_view text)
{
    const auto bytes = QByteArray(text.data(), static_cast<qsizetype>(text.size()));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

} // namespace demo
