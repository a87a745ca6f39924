// Lenient reading of the engine's JSON: a field of the wrong type counts as missing. Pure functions.
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// A number as a whole one: a fraction is cut off toward zero, and what lies outside the range becomes the
// nearest end of it. Nothing for a value of another type.
std::optional<qint64> integerIn(const QJsonValue &value);

std::optional<QString> textIn(const QJsonValue &value);

// The field's value, or 0.
qint64 integerField(const QJsonObject &object, QLatin1StringView key);

// The field's value, or an empty text.
QString textField(const QJsonObject &object, QLatin1StringView key);

// The field's elements, or nothing at all when it is no array or one of them has another type.
QList<QJsonObject> objectsField(const QJsonObject &object, QLatin1StringView key);
QStringList textsField(const QJsonObject &object, QLatin1StringView key);
