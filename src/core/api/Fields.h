// Lenient reading of a JSON object: a field of the wrong type counts as missing. Pure functions.
#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1StringView>
#include <QList>
#include <QString>

#include <optional>

// A number as a whole one: a fraction is cut off toward zero, and what lies outside the range becomes the
// nearest end of it. Nothing for a value of another type.
std::optional<qint64> integerIn(const QJsonValue &value);

// The field's value, or 0.
qint64 integerField(const QJsonObject &object, QLatin1StringView key);

// The field's value, or an empty text.
QString textField(const QJsonObject &object, QLatin1StringView key);

// The field's elements, or nothing at all when it is no array or one of them is no object.
QList<QJsonObject> objectsField(const QJsonObject &object, QLatin1StringView key);
