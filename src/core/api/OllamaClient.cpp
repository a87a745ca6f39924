#include "core/api/OllamaClient.h"

#include "core/api/Friendly.h"
#include "core/api/OllamaError.h"
#include "core/api/WireFormat.h"
#include "platform/async/Launch.h"
#include "platform/async/Sleep.h"
#include "platform/async/WorkerQueue.h"
#include "platform/http/HttpClient.h"
#include "platform/http/LineSplitter.h"
#include "platform/http/TransportError.h"

#include <QElapsedTimer>
#include <QJsonDocument>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 30s;
constexpr auto livenessPatience = 2s;
constexpr auto streamPatience = 900s;
constexpr auto nextTurn = 0ms;

// An engine faster than this program is slowed down rather than stored.
constexpr qint64 streamReadAhead = 512 * 1024;

// What an endpoint answers at most, in bytes; what is longer is no answer of an engine, and cannot be read.
// An installed model takes the engine some 500 bytes to tell, so 30,000 of them fit.
constexpr qint64 versionLimit = 16 * 1024;
constexpr qint64 installedLimit = 16 * 1024 * 1024;
constexpr qint64 loadedLimit = 1024 * 1024;
constexpr qint64 detailsLimit = 8 * 1024 * 1024;
constexpr qint64 droppedLimit = 64 * 1024; // of an answer that nobody reads
constexpr qint64 wholeErrorLimit = 64 * 1024;
constexpr qint64 lineLimit = 8 * 1024 * 1024;

// A stream is decoded in pieces of so many bytes. Where more is waiting the window gets its turn after so
// long, however short the lines are.
constexpr qint64 pieceLimit = 4 * 1024;
constexpr auto turnLimit = 4ms;

// Longer texts are decoded in the background.
constexpr qsizetype briefText = 64 * 1024;

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

// The body of an answer with a success status; cut behind its limit, where it is JSON no longer.
Task<QByteArray> answerTo(HttpRequest request, qint64 limit, StopToken stop)
{
    const HttpTransfer transfer = HttpClient::shared().start(request, stop);
    const HttpHead head = co_await transfer.head();
    const QByteArray body = co_await transfer.readAll(head.status >= 400 ? wholeErrorLimit : limit);
    OllamaClient::check(head, body);
    co_return body;
}

Task<> succeed(HttpRequest request, StopToken stop)
{
    co_await answerTo(std::move(request), droppedLimit, std::move(stop));
}

template <class Result>
using Decode = Result (*)(QByteArrayView);

template <class Result>
Task<Result> decodedBehind(QByteArray text, Decode<Result> decode)
{
    const auto work = [&text, decode] { return decode(text); };
    co_return co_await WorkerQueue::shared().run(work);
}

template <class Result>
Task<Result> decoded(HttpRequest request, qint64 limit, StopToken stop, Decode<Result> decode)
{
    const QByteArray answer = co_await answerTo(std::move(request), limit, std::move(stop));
    if (answer.size() <= briefText)
        co_return decode(answer);
    co_return co_await decodedBehind(answer, decode);
}

template <class Record>
using DecodedLine = std::optional<WireFormat::Line<Record>>;

template <class Record>
void yield(DecodedLine<Record> line, const typename Stream<Record>::Source &source)
{
    if (!line)
        return;
    if (line->error)
        throw OllamaError::api(*line->error);
    source.push(std::move(line->record));
}

template <class Record>
Task<> yieldLine(QByteArray text, typename Stream<Record>::Source source, Decode<DecodedLine<Record>> decode)
{
    yield<Record>(co_await decodedBehind(text, decode), source);
}

template <class Record>
Task<> readLines(HttpRequest request, StopToken stop, typename Stream<Record>::Source source,
                 Decode<DecodedLine<Record>> decode)
{
    const HttpTransfer transfer = HttpClient::shared().start(request, stop);
    const HttpHead head = co_await transfer.head();
    QByteArray errorBody;
    if (head.status >= 400)
        errorBody = co_await transfer.readAll(errorBodyLimit);
    OllamaClient::check(head, errorBody);

    LineSplitter lines(lineLimit);
    QElapsedTimer turn;
    turn.start();
    for (;;) {
        const QByteArray bytes = co_await transfer.read(pieceLimit);
        if (bytes.isEmpty())
            break;
        lines.append(bytes);
        while (const std::optional<QByteArrayView> line = lines.next()) {
            if (line->isEmpty())
                continue;
            if (line->size() <= briefText)
                yield<Record>(decode(*line), source);
            else
                co_await yieldLine<Record>(line->toByteArray(), source, decode);
        }
        if (bytes.size() == pieceLimit && std::chrono::milliseconds(turn.elapsed()) >= turnLimit) {
            co_await sleepFor(nextTurn, stop);
            turn.restart();
        }
    }
    if (const std::optional<QByteArrayView> line = lines.rest())
        co_await yieldLine<Record>(line->toByteArray(), source, decode);
}

template <class Record>
Task<> produce(HttpRequest request, StopToken stop, typename Stream<Record>::Source source,
               Decode<DecodedLine<Record>> decode)
{
    try {
        co_await readLines<Record>(std::move(request), std::move(stop), source, decode);
        source.finish();
    } catch (...) {
        source.fail(std::current_exception());
    }
}

template <class Record>
Stream<Record> streamed(HttpRequest request, const StopToken &stop, Decode<DecodedLine<Record>> decode)
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
    return decoded<QList<InstalledModel>>(request(m_baseURL, "GET", "api/tags"_L1, patience), installedLimit,
                                          std::move(stop), WireFormat::installedModels);
}

Task<QList<LoadedModel>> OllamaClient::ps(StopToken stop) const
{
    return decoded<QList<LoadedModel>>(request(m_baseURL, "GET", "api/ps"_L1, patience), loadedLimit,
                                       std::move(stop), WireFormat::loadedModels);
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
    return decoded<ModelDetails>(request(m_baseURL, "POST", "api/show"_L1, patience, body), detailsLimit,
                                 std::move(stop), WireFormat::modelDetails);
}

Task<QString> OllamaClient::version(StopToken stop) const
{
    return decoded<QString>(request(m_baseURL, "GET", "api/version"_L1, livenessPatience), versionLimit,
                            std::move(stop), WireFormat::version);
}

Stream<PullProgress> OllamaClient::pull(const QString &name, StopToken stop) const
{
    const QJsonObject body{{"model"_L1, name}, {"stream"_L1, true}};
    return streamed<PullProgress>(request(m_baseURL, "POST", "api/pull"_L1, streamPatience, body), stop,
                                  WireFormat::pullLine);
}

Stream<ChatChunk> OllamaClient::chat(const ChatRequest &chat, StopToken stop) const
{
    const QJsonObject body = WireFormat::chatBody(chat);
    return streamed<ChatChunk>(request(m_baseURL, "POST", "api/chat"_L1, streamPatience, body), stop,
                               WireFormat::chatLine);
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
    return WireFormat::error(data);
}
