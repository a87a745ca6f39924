#pragma once

// Ways of making an answer wrong that are the same for every endpoint.

#include "FaultPlan.h"

#include <QJsonObject>

#include <chrono>
#include <string>
#include <string_view>

namespace demo {

// Numbers and truth values become texts, texts become numbers; arrays and objects stay.
QJsonObject withWrongTypes(const QJsonObject &object);
// Numbers become texts, the rest stays.
QJsonObject withTextNumbers(const QJsonObject &object);

// Puts a mark behind the text of a chat line or the status of a pull line, which `breakMarkedUtf8` turns
// into the single byte FF. False when the line has no text.
bool markForInvalidUtf8(QJsonObject &line);
void breakMarkedUtf8(std::string &text);

// The value in seconds, or practically for ever.
std::chrono::seconds stallTime(const FaultSet &faults, std::string_view name);

struct FaultyStatus
{
    int status = 500;
    std::string body;
    std::string contentType;
};

// From "404", "500;html", "503_empty": json (if nothing is said), html, text, empty, no-error, odd-error.
FaultyStatus faultyStatus(const std::string &value);

} // namespace demo
