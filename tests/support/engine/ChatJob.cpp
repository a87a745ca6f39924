#include "ChatJob.h"

#include "ChatReply.h"
#include "ChatRequest.h"
#include "Json.h"
#include "Timestamps.h"

#include <algorithm>
#include <utility>

namespace demo {

using namespace Qt::StringLiterals;
using Clock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

namespace {

// Keeps the model in memory for as long as somebody speaks with it.
class Lease
{
public:
    Lease(RunningModels &models, ModelName name) : m_models(models), m_name(std::move(name)) {}
    ~Lease() { m_models.release(m_name); }
    Lease(const Lease &) = delete;
    Lease &operator=(const Lease &) = delete;

private:
    RunningModels &m_models;
    const ModelName m_name;
};

struct Speech
{
    ChatRequest request;
    std::string thoughts;
    std::string words;
    int chunkMs = 0;
    int chunkBytes = 1;
    Clock::time_point asked;
    nanoseconds loadTime{0};
    std::shared_ptr<Lease> lease;
};

QJsonObject chatLine(const Speech &speech, const std::string &content, const std::string &thinking, bool done)
{
    QJsonObject message{{"role"_L1, u"assistant"_s}, {"content"_L1, toQt(content)}};
    if (!thinking.empty()) {
        message.insert("thinking"_L1, toQt(thinking));
    }
    return QJsonObject{{"model"_L1, toQt(speech.request.model.text)},
                       {"created_at"_L1, toQt(utcTimestamp(std::chrono::system_clock::now()))},
                       {"message"_L1, message},
                       {"done"_L1, done}};
}

struct Counters
{
    qint64 tokens = 0;
    nanoseconds prompt{0};
    nanoseconds speaking{0};
};

QJsonObject lastLine(const Speech &speech, const Counters &counters, const FaultSet &faults)
{
    const bool withText = faults.has("text-in-last-line");
    QJsonObject line = chatLine(speech, withText ? " And the last word." : "", {}, true);
    line.insert("done_reason"_L1, u"stop"_s);
    if (faults.has("no-counters")) {
        return line;
    }
    const auto put = [&line, zero = faults.has("zero-counters")](QLatin1StringView key, qint64 value) {
        line.insert(key, zero ? 0 : std::max<qint64>(value, 1));
    };
    const qint64 promptTokens = speech.request.promptBytes / 4 + 8 * speech.request.messageCount;
    put("total_duration"_L1, nanoseconds(Clock::now() - speech.asked).count());
    put("load_duration"_L1, speech.loadTime.count());
    put("prompt_eval_count"_L1, promptTokens);
    put("prompt_eval_duration"_L1, counters.prompt.count());
    put("eval_count"_L1, counters.tokens);
    put("eval_duration"_L1, counters.speaking.count());
    return line;
}

void speak(const Speech &speech, const FaultSet &faults, LineWriter &writer)
{
    const auto bytes = static_cast<std::size_t>(speech.chunkBytes);
    const auto thoughts = inPieces(speech.thoughts, bytes);
    const auto words = inPieces(speech.words, bytes);
    const auto gap = std::chrono::milliseconds(speech.chunkMs);
    writer.setBuffered(speech.chunkMs == 0);
    writer.setMiddle(static_cast<int>(std::max<std::size_t>(thoughts.size() + words.size(), 1)));

    const auto promptStart = Clock::now();
    auto next = promptStart + gap;
    Counters counters;
    const auto say = [&](const std::string &content, const std::string &thinking) {
        ++counters.tokens;
        const bool waited = speech.chunkMs == 0 || writer.waitUntil(std::exchange(next, next + gap));
        return waited && writer.write(chatLine(speech, content, thinking, false));
    };
    if (speech.chunkMs > 0 && !writer.waitUntil(next)) {
        return;
    }
    const auto speakingStart = Clock::now();
    counters.prompt = speakingStart - promptStart;
    for (const std::string_view piece : thoughts) {
        if (!say({}, std::string(piece))) {
            return;
        }
    }
    for (const std::string_view piece : words) {
        if (!say(std::string(piece), {})) {
            return;
        }
    }
    counters.speaking = Clock::now() - speakingStart;
    if (faults.has("no-done")) {
        return;
    }
    writer.write(lastLine(speech, counters, faults), true);
}

void replyWhole(const Speech &speech, Exchange &exchange)
{
    Counters counters;
    counters.tokens = static_cast<qint64>(speech.words.size() / 4);
    counters.speaking = Clock::now() - speech.asked;
    QJsonObject answer = lastLine(speech, counters, exchange.faults());
    const QJsonObject spoken = chatLine(speech, speech.words, speech.thoughts, true);
    answer.insert("message"_L1, spoken.value("message"_L1));
    exchange.reply(answer);
}

// Failures that the engine reports instead of an answer, once it has tried.
bool failsToLoad(Exchange &exchange)
{
    const FaultSet &faults = exchange.faults();
    if (faults.has("busy")) {
        exchange.replyError(503, "server busy, please try again.  maximum pending requests exceeded");
    } else if (faults.has("load-fail")) {
        exchange.replyError(500, "llama-server process has terminated: exit status 2\n"
                                 "error loading model: unable to allocate CPU buffer\n"
                                 "llama_model_load_from_file_impl: failed to load model");
    } else if (faults.has("out-of-memory")) {
        exchange.replyError(500, "llama-server reported out-of-memory during startup: "
                                 "model requires more system memory (9.1 GiB) than is available (3.4 GiB)");
    } else {
        return false;
    }
    return true;
}

} // namespace

void chat(EngineState &state, const std::shared_ptr<Exchange> &exchange, const QJsonObject &body)
{
    const auto asked = Clock::now();
    const auto parsed = parseChatRequest(body);
    if (const Refusal *refusal = std::get_if<Refusal>(&parsed)) {
        exchange->replyError(refusal->status, refusal->text);
        return;
    }
    const ChatRequest &request = std::get<ChatRequest>(parsed);
    if (!asksForFault(request.model.text) && !state.store.find(request.model.name)) {
        exchange->replyError(404, "model '" + request.model.text + "' not found");
        return;
    }
    const LoadRequest load{request.model.name, request.contextLength, request.keepAlive,
                           std::chrono::milliseconds(state.pace.loadMs)};
    const auto loadTime = state.running.acquire(load, exchange->connection());
    if (!loadTime) {
        exchange->abandon(RequestLog::State::cut);
        return;
    }
    Speech speech{request,
                  {},
                  {},
                  state.pace.chunkMs,
                  state.pace.chunkBytes,
                  asked,
                  *loadTime,
                  std::make_shared<Lease>(state.running, request.model.name)};
    if (failsToLoad(*exchange)) {
        return;
    }
    if (request.messageCount == 0) {
        QJsonObject answer = chatLine(speech, {}, {}, true);
        answer.insert("done_reason"_L1, u"load"_s);
        exchange->reply(answer);
        return;
    }
    speech.words = replyTo(request.lastUserText, request.messageCount);
    if (request.thinks) {
        speech.thoughts = thoughtsAbout(request.lastUserText);
    }
    if (!request.streamed) {
        replyWhole(speech, *exchange);
        return;
    }
    exchange->stream([exchange = exchange.get(), speech = std::make_shared<Speech>(std::move(speech))](
                         LineWriter &writer) { speak(*speech, exchange->faults(), writer); });
}

} // namespace demo
