// The forms in which conversation files hold identifiers and dates, and the readers that take nothing else.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <QUuid>

#include <optional>

// Upper-case hyphenated text, 36 characters.
QString uuidText(const QUuid &id);

// Takes hyphenated text of 36 characters in either case, without braces; nothing otherwise.
std::optional<QUuid> uuidFromText(QStringView text);

// "2025-03-14T09:26:53Z"; a fraction of a second is dropped. Nothing when the date is invalid or outside the
// years 1 to 9999 in UTC.
std::optional<QString> dateText(const QDateTime &date);

// Takes the form that dateText() writes, for an existing date; nothing otherwise.
std::optional<QDateTime> dateFromText(QStringView text);
