#include "core/api/Fields.h"

#include <QJsonArray>

#include <algorithm>
#include <limits>

std::optional<qint64> integerIn(const QJsonValue &value)
{
    if (!value.isDouble())
        return std::nullopt;
    // Up to here every whole number is a double; beyond, every double is a whole number.
    constexpr double exact = 9'007'199'254'740'992.0;
    const double number = value.toDouble();
    if (-exact < number && number < exact)
        return static_cast<qint64>(number);
    using Limits = std::numeric_limits<qint64>;
    return value.toInteger(number < 0 ? Limits::min() : Limits::max());
}

qint64 integerField(const QJsonObject &object, QLatin1StringView key)
{
    return integerIn(object.value(key)).value_or(0);
}

QString textField(const QJsonObject &object, QLatin1StringView key)
{
    return object.value(key).toString();
}

QList<QJsonObject> objectsField(const QJsonObject &object, QLatin1StringView key)
{
    const QJsonArray array = object.value(key).toArray();
    if (!std::all_of(array.begin(), array.end(), [](const QJsonValue &value) { return value.isObject(); }))
        return {};
    QList<QJsonObject> objects;
    for (const QJsonValue value : array)
        objects.append(value.toObject());
    return objects;
}
