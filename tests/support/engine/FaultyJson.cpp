#include "FaultyJson.h"

#include "Json.h"

#include <QJsonArray>

#include <charconv>

namespace demo {

using namespace Qt::StringLiterals;

namespace {

using LeafRule = QJsonValue (*)(const QJsonValue &);

QJsonValue changed(const QJsonValue &value, LeafRule rule);

QJsonObject changed(const QJsonObject &object, LeafRule rule)
{
    QJsonObject result;
    for (auto entry = object.constBegin(); entry != object.constEnd(); ++entry) {
        result.insert(entry.key(), changed(entry.value(), rule));
    }
    return result;
}

QJsonValue changed(const QJsonValue &value, LeafRule rule)
{
    if (value.isObject()) {
        return changed(value.toObject(), rule);
    }
    if (!value.isArray()) {
        return rule(value);
    }
    QJsonArray result;
    const QJsonArray array = value.toArray();
    for (const auto &element : array) {
        result.append(changed(element, rule));
    }
    return result;
}

QJsonValue numberAsText(const QJsonValue &value)
{
    return value.isDouble() ? QJsonValue(QString::number(value.toInteger())) : value;
}

QJsonValue wrongType(const QJsonValue &value)
{
    if (value.isString()) {
        return 17;
    }
    if (value.isBool()) {
        return value.toBool() ? u"true"_s : u"false"_s;
    }
    return numberAsText(value);
}

// A private-use character, three bytes long, that no answer contains otherwise.
constexpr char16_t markCharacter = u'\uE5F0';
constexpr std::string_view markBytes = "\xEE\x97\xB0";

constexpr std::string_view failureText = "the demonstration engine was asked to fail";

} // namespace

QJsonObject withWrongTypes(const QJsonObject &object)
{
    return changed(object, wrongType);
}

QJsonObject withTextNumbers(const QJsonObject &object)
{
    return changed(object, numberAsText);
}

bool markForInvalidUtf8(QJsonObject &line)
{
    QJsonObject message = line.value("message"_L1).toObject();
    const QString content = message.value("content"_L1).toString();
    if (!content.isEmpty()) {
        message.insert("content"_L1, content + QChar(markCharacter));
        line.insert("message"_L1, message);
        return true;
    }
    const QString status = line.value("status"_L1).toString();
    if (!status.isEmpty()) {
        line.insert("status"_L1, status + QChar(markCharacter));
    }
    return !status.isEmpty();
}

void breakMarkedUtf8(std::string &text)
{
    const std::size_t mark = text.find(markBytes);
    if (mark != std::string::npos) {
        text.replace(mark, markBytes.size(), "\xFF");
    }
}

std::chrono::seconds stallTime(const FaultSet &faults, std::string_view name)
{
    return std::chrono::seconds(faults.number(name, 24 * 60 * 60));
}

FaultyStatus faultyStatus(const std::string &value)
{
    FaultyStatus answer;
    const std::size_t mark = value.find_first_of(";_");
    int status = 0;
    std::from_chars(value.data(), value.data() + std::min(mark, value.size()), status);
    if (status >= 200 && status <= 599) {
        answer.status = status;
    }
    const std::string kind = mark == std::string::npos ? "json" : value.substr(mark + 1);
    answer.contentType = "application/json; charset=utf-8";
    if (kind == "html") {
        answer.contentType = "text/html; charset=utf-8";
        answer.body = "<html><head><title>Error</title></head><body><h1>Error</h1></body></html>\n";
    } else if (kind == "text") {
        answer.contentType = "text/plain; charset=utf-8";
        answer.body = failureText;
    } else if (kind == "no-error") {
        answer.body = R"({"detail":"something went wrong"})";
    } else if (kind == "odd-error") {
        answer.body = R"({"error":{"message":"something went wrong"}})";
    } else if (kind != "empty") {
        answer.body = compact({{"error"_L1, toQt(failureText)}});
    }
    return answer;
}

} // namespace demo
