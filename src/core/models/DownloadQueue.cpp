#include "core/models/DownloadQueue.h"

#include "core/api/Cancellation.h"
#include "core/api/Friendly.h"
#include "core/api/NetworkFailure.h"
#include "core/api/OllamaClient.h"
#include "core/engine/AppPaths.h"
#include "core/engine/EngineManager.h"
#include "core/models/LayerTable.h"
#include "core/models/ModelCatalog.h"
#include "platform/async/Sleep.h"
#include "platform/text/ByteCount.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Left free beside the model.
constexpr qint64 spareBytes = 2'000'000'000;

bool runs(const EngineManager *engine)
{
    return engine && engine->state().kind == EngineManager::State::running;
}

DownloadItem::Phase failure(const QString &message, bool isCut = false)
{
    return {DownloadItem::Phase::failed, message, isCut};
}

} // namespace

DownloadQueue::DownloadQueue() : DownloadQueue(Seams()) {}

DownloadQueue::DownloadQueue(Seams seams, QObject *parent) : QObject(parent), m_seams(std::move(seams))
{
    if (!m_seams.freeBytes)
        m_seams.freeBytes = AppPaths::freeBytes;
}

DownloadQueue::~DownloadQueue()
{
    m_currentTask.requestStop();
}

const DownloadItem *DownloadQueue::item(const QString &name) const
{
    const auto found = std::ranges::find(m_items, ModelCatalog::normalized(name), &DownloadItem::id);
    return found != m_items.end() ? &*found : nullptr;
}

void DownloadQueue::setEngine(EngineManager *engine)
{
    m_engine = engine;
}

bool DownloadQueue::enqueue(const QString &name, std::optional<qint64> knownSize)
{
    const QString pullName = name.trimmed();
    if (pullName.isEmpty() || pullName.contains(u' ')) {
        refuse(tr("Please type a model name without spaces, for example gemma3:4b."));
        return false;
    }
    const QString id = ModelCatalog::normalized(pullName);
    const DownloadItem *const present = item(id);
    if (present && (present->phase.kind == DownloadItem::Phase::queued ||
                    present->phase.kind == DownloadItem::Phase::running))
        return true;

    const QString folder = AppPaths::modelsDir();
    AppPaths::ensure(folder);
    const qint64 need = knownSize.value_or(0) + spareBytes;
    const std::optional<qint64> free = m_seams.freeBytes(folder);
    if (free && *free < need) {
        refuse(
            tr("Not enough free disk space: this needs about %1 (the model plus 2 GB spare) and only %2 is "
               "free.")
                .arg(byteCountText(need), byteCountText(*free)));
        return false;
    }
    removeAll(id);
    m_items.append({.id = id, .pullName = pullName, .knownSize = knownSize});
    Q_EMIT itemsChanged();
    pump();
    return true;
}

void DownloadQueue::cancel(const QString &name)
{
    const QString id = ModelCatalog::normalized(name);
    const DownloadItem *const present = item(id);
    if (!present)
        return;
    if (present->phase.kind == DownloadItem::Phase::running)
        m_currentTask.requestStop();
    else if (removeAll(id))
        Q_EMIT itemsChanged();
}

bool DownloadQueue::endTransfer()
{
    if (m_transferring)
        m_currentTask.requestStop();
    return m_transferring;
}

void DownloadQueue::dismiss(const QString &name)
{
    if (removeAll(ModelCatalog::normalized(name)))
        Q_EMIT itemsChanged();
}

void DownloadQueue::pump()
{
    // Quitting refuses new tasks, and an item must not be shown as running without one.
    if (m_currentID || quitToken().stopRequested())
        return;
    const auto isQueued = [](const DownloadItem &item) {
        return item.phase.kind == DownloadItem::Phase::queued;
    };
    const auto next = std::ranges::find_if(std::as_const(m_items), isQueued);
    if (next == m_items.cend())
        return;
    const QString id = next->id;
    const QString name = next->pullName;
    m_currentID = id;
    DownloadItem *const item = find(id);
    item->phase = {DownloadItem::Phase::running, {}};
    item->status = tr("Starting…");
    m_currentTask = Job([this, id, name](const StopToken &stop) { return run(this, id, name, stop); });
    Q_EMIT itemsChanged();
}

Task<> DownloadQueue::run(QPointer<DownloadQueue> self, QString id, QString name, StopToken stop)
{
    // Out of the call that asked for it: a pull that fails at once then fails behind its start.
    const std::chrono::milliseconds nextTurn(0);
    co_await sleepFor(nextTurn, stop);
    if (!self)
        co_return;
    std::optional<DownloadItem::Phase> end = co_await attempt(self, id, name, stop);
    if (!self)
        co_return;
    if (stop.stopRequested())
        end = DownloadItem::Phase{DownloadItem::Phase::cancelled, {}};
    if (end)
        self->finish(id, *end);
    else
        self->succeed(id);
}

// How the pull ended, or nothing when it succeeded. What it returns once `stop` asks is of no account.
Task<std::optional<DownloadItem::Phase>> DownloadQueue::attempt(QPointer<DownloadQueue> self, QString id,
                                                                QString name, StopToken stop)
{
    const QPointer<EngineManager> engine = self->m_engine;
    if (!engine)
        co_return failure(tr("The engine is not available."));
    try {
        if (!runs(engine) && !stop.stopRequested())
            co_await engine->start();
        if (!self || stop.stopRequested())
            co_return std::nullopt;
        if (!runs(engine))
            co_return failure(tr("The local engine isn't running. Open the Server tab to see why."));
        const bool success = co_await pull(self, id, name, stop);
        if (success)
            co_return std::nullopt;
        co_return failure(tr("The download stopped early. Press Resume to continue where it left off."),
                          true);
    } catch (...) {
        const auto error = std::current_exception();
        if (isCancellation(error))
            co_return DownloadItem::Phase{DownloadItem::Phase::cancelled, {}};
        co_return failure(Friendly::message(error), isNetworkFailure(error));
    }
}

// Whether the engine reported success.
Task<bool> DownloadQueue::pull(QPointer<DownloadQueue> self, QString id, QString name, StopToken stop)
{
    LayerTable layers;
    SpeedMeter meter(self->m_seams.clock);
    const auto showStall = [self, id] {
        if (self)
            self->alter(id, [](DownloadItem &item) { item.stalled = true; });
    };
    std::optional<StallWatch> watch(std::in_place, showStall, self->m_seams.patience);
    bool success = false;
    const OllamaClient client(self->m_engine->port());
    self->m_transferring = true;
    Stream<PullProgress> stream = client.pull(name, stop);
    while (const auto progress = co_await stream.next()) {
        if (!self || stop.stopRequested())
            break;
        layers.update(*progress);
        meter.update(layers.received());
        // What the engine does once it has all layers brings no bytes.
        if (layers.total() > 0 && !progress->digest)
            watch.reset();
        if (watch)
            watch->update(layers.received());
        self->alter(id, [&](DownloadItem &item) {
            item.status = progress->status;
            item.total = layers.total();
            item.completed = layers.completed();
            item.speed = meter.speed();
            item.stalled = watch && watch->stalled();
        });
        success = success || progress->status == "success"_L1;
    }
    co_return success;
}

void DownloadQueue::alter(const QString &id, const std::function<void(DownloadItem &)> &change)
{
    DownloadItem *const item = find(id);
    if (!item)
        return;
    const DownloadItem before = *item;
    change(*item);
    if (*item != before)
        Q_EMIT itemsChanged();
}

void DownloadQueue::succeed(const QString &id)
{
    const DownloadItem *const present = item(id);
    const std::optional<DownloadItem> last = present ? std::optional(*present) : std::nullopt;
    removeAll(id);
    if (onInstalledChanged)
        onInstalledChanged();
    m_currentID.reset();
    m_currentTask = {};
    m_transferring = false;
    if (last) {
        Q_EMIT itemsChanged();
        Q_EMIT succeeded(*last);
    }
    pump();
}

void DownloadQueue::finish(const QString &id, const DownloadItem::Phase &phase)
{
    m_currentID.reset();
    m_currentTask = {};
    m_transferring = false;
    alter(id, [&phase](DownloadItem &item) {
        item.phase = phase;
        item.speed = 0;
        item.stalled = false;
    });
    const DownloadItem *const present = item(id);
    if (present && phase.kind == DownloadItem::Phase::failed) {
        const DownloadItem last = *present;
        Q_EMIT failed(last);
    }
    pump();
}

void DownloadQueue::refuse(const QString &message) const
{
    if (onMessage)
        onMessage(message);
}

DownloadItem *DownloadQueue::find(const QString &id)
{
    const auto place = std::ranges::find(std::as_const(m_items), id, &DownloadItem::id);
    return place != m_items.cend() ? &m_items[std::distance(m_items.cbegin(), place)] : nullptr;
}

bool DownloadQueue::removeAll(const QString &id)
{
    return m_items.removeIf([&id](const DownloadItem &item) { return item.id == id; }) > 0;
}
