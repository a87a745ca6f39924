#include "core/api/OllamaClient.h"

#include "core/api/Friendly.h"
#include "core/api/OllamaError.h"
#include "core/api/WireFormat.h"
#include "platform/async/Launch.h"
#include "platform/http/HttpClient.h"
#include "platform/http/LineSplitter.h"
#include "platform/http/TransportError.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 30s;
constexpr auto livenessPatience = 2s;
constexpr auto streamPatience = 900s;

// An engine faster than this program is slowed down rather than stored.
constexpr qint64 streamReadAhead = 512 * 1024;

// What is longer than these is no answer of an engine: a body without an end must not be read for ever.
constexpr qint64 wholeAnswerLimit = 64 * 1024 * 1024;
constexpr qint64 wholeErrorLimit = 64 * 1024;

// An error body of a stream is read up to the first byte past 8 KiB.
constexpr qint64 errorBodyLimit = 8 * 1024 + 1;

HttpRequest request(const QUrl &base, const QByteArray &method, QLatin1StringView path,
                    std::chrono::milliseconds idleTimeout)
{
    HttpRequest request;
    request.method = method;
    request.url = base;
    request.url.setPath("/"_L1 + path);
    request.idleTimeout = idleTimeout;
    request.followRedirects = false; // the engine has nowhere to send anyone
    return request;
}

HttpRequest request(const QUrl &base, const QByteArray &method, QLatin1StringView path,
                    std::chrono::milliseconds idleTimeout, const QJsonObject &body)
{
    HttpRequest result = request(base, method, path, idleTimeout);
    result.headers = {{"Content-Type", "application/json"}};
    result.body = QJsonDocument(body).toJson(QJsonDocument::Compact);
    return result;
}

Task<QJsonObject> json(HttpRequest request, StopToken stop)
{
    const HttpTransfer transfer = HttpClient::shared().start(request, stop);
    const HttpHead head = co_await transfer.head();
    const qint64 limit = head.status >= 400 ? wholeErrorLimit : wholeAnswerLimit;
    const QByteArray body = co_await transfer.readAll(limit);
    OllamaClient::check(head, body);
    co_return WireFormat::object(body).value_or(QJsonObject());
}

Task<> succeed(HttpRequest request, StopToken stop)
{
    co_await json(std::move(request), std::move(stop));
}

template <class Result>
Task<Result> decoded(HttpRequest request, StopToken stop, Result (*decode)(const QJsonObject &))
{
    const QJsonObject answer = co_await json(std::move(request), std::move(stop));
    co_return decode(answer);
}

template <class Record>
using Decode = Record (*)(const QJsonObject &);

template <class Record>
void yieldLine(QByteArrayView line, const typename Stream<Record>::Source &source, Decode<Record> decode)
{
    const std::optional<QJsonObject> object = WireFormat::lineObject(line);
    if (!object)
        return;
    if (const std::optional<QString> message = WireFormat::error(*object))
        throw OllamaError::api(*message);
    source.push(decode(*object));
}

template <class Record>
Task<> readLines(HttpRequest request, StopToken stop, typename Stream<Record>::Source source,
                 Decode<Record> decode)
{
    const HttpTransfer transfer = HttpClient::shared().start(request, stop);
    const HttpHead head = co_await transfer.head();
    QByteArray errorBody;
    if (head.status >= 400)
        errorBody = co_await transfer.readAll(errorBodyLimit);
    OllamaClient::check(head, errorBody);

    LineSplitter lines;
    for (;;) {
        const QByteArray bytes = co_await transfer.read();
        if (bytes.isEmpty())
            break;
        lines.append(bytes);
        while (const std::optional<QByteArrayView> line = lines.next())
            yieldLine<Record>(*line, source, decode);
    }
    if (const std::optional<QByteArrayView> line = lines.rest())
        yieldLine<Record>(*line, source, decode);
}

template <class Record>
Task<> produce(HttpRequest request, StopToken stop, typename Stream<Record>::Source source,
               Decode<Record> decode)
{
    try {
        co_await readLines<Record>(std::move(request), std::move(stop), source, decode);
        source.finish();
    } catch (...) {
        source.fail(std::current_exception());
    }
}

template <class Record>
Stream<Record> streamed(HttpRequest request, const StopToken &stop, Decode<Record> decode)
{
    request.readBufferSize = streamReadAhead;
    Stream<Record> stream(stop);
    const auto source = stream.source();
    const StopToken token = stream.producerToken();
    const bool started = launch([&] { return produce<Record>(request, token, source, decode); });
    if (!started)
        source.fail(std::make_exception_ptr(TransportError(TransportError::Code::cancelled)));
    return stream;
}

} // namespace

OllamaClient::OllamaClient(int port) : m_baseURL(u"http://127.0.0.1:%1"_s.arg(port)) {}

Task<QList<InstalledModel>> OllamaClient::tags(StopToken stop) const
{
    return decoded(request(m_baseURL, "GET", "api/tags"_L1, patience), std::move(stop),
                   WireFormat::installedModels);
}

Task<QList<LoadedModel>> OllamaClient::ps(StopToken stop) const
{
    return decoded(request(m_baseURL, "GET", "api/ps"_L1, patience), std::move(stop),
                   WireFormat::loadedModels);
}

Task<> OllamaClient::unload(const QString &name, StopToken stop) const
{
    const QJsonObject body{{"model"_L1, name}, {"keep_alive"_L1, 0}};
    return succeed(request(m_baseURL, "POST", "api/generate"_L1, patience, body), std::move(stop));
}

Task<> OllamaClient::deleteModel(const QString &name, StopToken stop) const
{
    const QJsonObject body{{"model"_L1, name}};
    return succeed(request(m_baseURL, "DELETE", "api/delete"_L1, patience, body), std::move(stop));
}

Task<ModelDetails> OllamaClient::show(const QString &name, StopToken stop) const
{
    const QJsonObject body{{"model"_L1, name}};
    return decoded(request(m_baseURL, "POST", "api/show"_L1, patience, body), std::move(stop),
                   WireFormat::modelDetails);
}

Task<QString> OllamaClient::version(StopToken stop) const
{
    return decoded(request(m_baseURL, "GET", "api/version"_L1, livenessPatience), std::move(stop),
                   WireFormat::version);
}

Stream<PullProgress> OllamaClient::pull(const QString &name, StopToken stop) const
{
    const QJsonObject body{{"model"_L1, name}, {"stream"_L1, true}};
    return streamed(request(m_baseURL, "POST", "api/pull"_L1, streamPatience, body), stop,
                    WireFormat::pullProgress);
}

Stream<ChatChunk> OllamaClient::chat(const ChatRequest &chat, StopToken stop) const
{
    const QJsonObject body = WireFormat::chatBody(chat);
    return streamed(request(m_baseURL, "POST", "api/chat"_L1, streamPatience, body), stop,
                    WireFormat::chatChunk);
}

void OllamaClient::check(const HttpHead &head, const QByteArray &body)
{
    if (head.status >= 200 && head.status < 300)
        return;
    if (head.status < 400)
        throw OllamaError::badResponse();
    throw OllamaError::api(parseError(body).value_or(Friendly::withoutReason(head.status)));
}

std::optional<QString> OllamaClient::parseError(const QByteArray &data)
{
    const std::optional<QJsonObject> object = WireFormat::object(data);
    return object ? WireFormat::error(*object) : std::nullopt;
}
