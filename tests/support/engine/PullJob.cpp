#include "PullJob.h"

#include "Json.h"
#include "ModelRequest.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace demo {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto tick = 60ms;
constexpr auto writingDown = 20ms;
// What is done before the first report would be due says nothing.
constexpr qint64 silentBytes = 100'000;

QJsonObject statusLine(const std::string &status)
{
    return QJsonObject{{"status"_L1, toQt(status)}};
}

QJsonObject progressLine(const Layer &layer, qint64 completed)
{
    QJsonObject line = statusLine("pulling " + layer.digest.substr(0, 12));
    line.insert("digest"_L1, "sha256:"_L1 + toQt(layer.digest));
    if (layer.sizeBytes > 0) {
        line.insert("total"_L1, layer.sizeBytes);
    }
    if (completed > 0) {
        line.insert("completed"_L1, completed);
    }
    return line;
}

// The engine needs some time without its client until what it has of a layer is safe.
class UnwrittenPartial
{
public:
    UnwrittenPartial(ModelStore &store, const Layer &layer) : m_store(store), m_layer(layer)
    {
        m_store.beginPartial(m_layer);
    }
    ~UnwrittenPartial() { m_store.endPartial(m_layer); }
    UnwrittenPartial(const UnwrittenPartial &) = delete;
    UnwrittenPartial &operator=(const UnwrittenPartial &) = delete;

private:
    ModelStore &m_store;
    const Layer &m_layer;
};

class PullJob
{
public:
    PullJob(EngineState &state, const FaultSet &faults, ModelName name, LineWriter &writer)
        : m_state(state),
          m_faults(faults),
          m_name(std::move(name)),
          m_writer(writer),
          m_layers(ModelStore::layersOf(m_name)),
          m_total(state.pace.pullMs)
    {
    }

    void run()
    {
        const bool again = m_state.store.find(m_name).has_value();
        if (!m_writer.write(statusLine("pulling manifest")) || !pause(20) || !manifestExists()) {
            return;
        }
        for (const Layer &layer : m_layers) {
            if (!pullLayer(layer)) {
                return;
            }
        }
        if (!m_writer.write(statusLine("verifying sha256 digest")) || !pause(20) || !digestFits() ||
            !m_writer.write(statusLine("writing manifest"))) {
            return;
        }
        m_state.store.writeManifest(m_name, m_layers);
        const bool tidies = again || m_layers.front().digest.front() < '4';
        if (tidies && !m_writer.write(statusLine("removing unused layers"))) {
            return;
        }
        if (!m_faults.has("no-success")) {
            m_writer.write(statusLine("success"), true);
        }
    }

private:
    // A share of the time that the whole pull takes.
    bool pause(int divisor) { return m_writer.waitUntil(Clock::now() + m_total / divisor); }

    bool manifestExists()
    {
        const auto named = [this](const char *part) { return m_name.model.find(part) != std::string::npos; };
        if (m_faults.has("no-host")) {
            m_writer.fail("pull model manifest: Get \"https://registry.ollama.ai/v2/library/" + m_name.model +
                          "/manifests/" + m_name.tag +
                          "\": dial tcp: lookup registry.ollama.ai: no such host");
        } else if (m_faults.has("canceled")) {
            m_writer.fail("context canceled");
        } else if (named("does-not-exist") || named("missing")) {
            m_writer.fail("pull model manifest: file does not exist");
        } else {
            return true;
        }
        return false;
    }

    bool digestFits()
    {
        if (!m_faults.has("digest-mismatch")) {
            return true;
        }
        const Layer &layer = m_layers.front();
        m_state.store.dropLayer(layer);
        m_writer.fail("digest mismatch, file must be downloaded again: want sha256:" + layer.digest +
                      ", got sha256:" + std::string(layer.digest.rbegin(), layer.digest.rend()));
        return false;
    }

    bool pullLayer(const Layer &layer)
    {
        if (m_state.store.hasLayer(layer)) {
            return m_writer.write(progressLine(layer, layer.sizeBytes));
        }
        if (!m_state.store.canContinue(layer)) {
            m_writer.fail("EOF");
            return false;
        }
        if (layer.sizeBytes >= silentBytes) {
            const UnwrittenPartial partial(m_state.store, layer);
            if (!download(layer)) {
                std::this_thread::sleep_for(writingDown);
                return false;
            }
        }
        m_state.store.finishLayer(layer);
        return true;
    }

    qint64 bytesPerTick(const Layer &layer) const
    {
        const qint64 all = m_layers[0].sizeBytes + m_layers[1].sizeBytes;
        const double ticks =
            std::max(static_cast<double>(m_total / 1ms) * 0.9 / static_cast<double>(tick / 1ms), 1.0);
        return std::clamp<qint64>(static_cast<qint64>(static_cast<double>(all) / ticks), 1,
                                  std::max<qint64>(layer.sizeBytes * 2 / 5, 1));
    }

    bool failsAt(qint64 completed, const Layer &layer)
    {
        if (completed < layer.sizeBytes / 3) {
            return false;
        }
        if (m_faults.has("no-space")) {
            const auto path =
                m_state.settings.modelsFolder / "blobs" / ("sha256-" + layer.digest + "-partial");
            m_writer.fail("write " + path.string() + ": no space left on device");
        } else if (m_faults.has("max-retries")) {
            m_writer.fail("max retries exceeded: unexpected EOF");
        } else {
            return false;
        }
        return true;
    }

    bool download(const Layer &layer)
    {
        const qint64 step = bytesPerTick(layer);
        qint64 completed = m_state.store.partialBytes(layer);
        auto next = Clock::now();
        for (int count = 0; completed < layer.sizeBytes; ++count) {
            const bool falls = m_faults.has("falling") && count % 5 == 4;
            const qint64 shown = falls ? std::max<qint64>(completed - 3 * step, 0) : completed;
            if (!m_writer.write(progressLine(layer, shown))) {
                return false;
            }
            if (failsAt(completed, layer)) {
                return false;
            }
            next += tick;
            const bool waited = m_total == 0ms || m_writer.waitUntil(next);
            // The speed of a line is never quite even.
            completed = std::min(completed + step + step / 7 * (count % 3 - 1), layer.sizeBytes);
            m_state.store.savePartial(layer, completed);
            if (!waited) {
                return false;
            }
        }
        return true;
    }

    EngineState &m_state;
    const FaultSet &m_faults;
    const ModelName m_name;
    LineWriter &m_writer;
    const std::vector<Layer> m_layers;
    const std::chrono::milliseconds m_total;
};

// Without streaming the client gets the last line alone, as the whole answer.
void pullSilently(EngineState &state, Exchange &exchange, const ModelName &name)
{
    std::string body;
    const FaultSet none;
    LineWriter writer(
        [&body](std::string_view bytes) {
            body = bytes;
            return true;
        },
        none, exchange.connection());
    PullJob(state, exchange.faults(), name, writer).run();
    if (writer.end() == LineWriter::End::clientGone) {
        exchange.abandon(RequestLog::State::cut);
        return;
    }
    const QJsonObject answer = parseObject(body).value_or(QJsonObject());
    exchange.reply(answer, answer.contains("error"_L1) ? 500 : 200);
}

} // namespace

void pull(EngineState &state, const std::shared_ptr<Exchange> &exchange, const QJsonObject &body)
{
    const auto model = modelOf(body);
    if (std::holds_alternative<Refusal>(model)) {
        exchange->replyError(400, "invalid model name");
        return;
    }
    const ModelName name = std::get<ModelRequest>(model).name;
    if (!body.value("stream"_L1).toBool(true)) {
        pullSilently(state, *exchange, name);
        return;
    }
    exchange->stream([&state, exchange = exchange.get(), name](LineWriter &writer) {
        PullJob(state, exchange->faults(), name, writer).run();
    });
}

} // namespace demo
