#include "core/app/EngineModels.h"

#include "core/api/Friendly.h"
#include "core/api/OllamaClient.h"
#include "core/engine/EngineManager.h"
#include "core/models/ModelCatalog.h"
#include "platform/async/Sleep.h"
#include "platform/async/WorkerQueue.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

// More are indexed in the background.
constexpr qsizetype fewModels = 500;

// The answer, or nothing when there is none.
template <class T>
Task<std::optional<T>> answerOf(Task<T> request)
{
    try {
        co_return co_await request;
    } catch (...) {
        co_return std::nullopt;
    }
}

} // namespace

EngineModels::EngineModels(const EngineManager &engine, std::chrono::milliseconds unloadPatience,
                           QObject *parent)
    : QObject(parent), m_engine(engine), m_unloadPatience(unloadPatience)
{
    connect(&m_engine, &EngineManager::stateChanged, this, &EngineModels::followEngine);
}

EngineModels::~EngineModels()
{
    m_stop.requestStop();
}

const InstalledModel *EngineModels::findInstalled(const QString &name) const
{
    const qsizetype place = m_installed.place(name);
    return place >= 0 ? &m_installed.models().at(place) : nullptr;
}

bool EngineModels::isLoaded(const QString &name) const
{
    return m_loadedNames.contains(ModelCatalog::normalized(name));
}

bool EngineModels::isUnloading(const QString &name) const
{
    return m_unloading.contains(ModelCatalog::normalized(name));
}

Task<> EngineModels::refresh()
{
    return pass(this, m_stop.token());
}

Task<> EngineModels::pass(QPointer<EngineModels> self, StopToken stop)
{
    if (!self->engineRuns())
        co_return;
    const OllamaClient client(self->m_engine.port());
    const auto installed = co_await answerOf(client.tags(stop));
    if (stop.stopRequested())
        co_return;
    if (installed)
        co_await takeInstalled(self, *installed, stop);
    if (stop.stopRequested())
        co_return;
    co_await askForLoaded(self, stop);
}

Task<> EngineModels::takeInstalled(QPointer<EngineModels> self, QList<InstalledModel> installed,
                                   StopToken stop)
{
    // An unchanged list stays the same one, by which a view knows at once that it is unchanged.
    if (self->m_installed.models() == installed)
        co_return;
    if (installed.size() <= fewModels) {
        self->setInstalled(InstalledIndex(installed));
        co_return;
    }
    const auto prepare = [&installed] { return InstalledIndex(installed); };
    const InstalledIndex index = co_await WorkerQueue::shared().run(prepare);
    if (!stop.stopRequested())
        self->setInstalled(index);
}

Task<> EngineModels::askForLoaded(QPointer<EngineModels> self, StopToken stop)
{
    const OllamaClient client(self->m_engine.port());
    const auto loaded = co_await answerOf(client.ps(stop));
    if (stop.stopRequested())
        co_return;
    // An answer that crossed with the engine's end is out of date.
    if (loaded && self->engineRuns())
        self->setLoaded(*loaded);
}

void EngineModels::followEngine()
{
    if (engineRuns())
        launch([this] { return refresh(); });
    else
        setLoaded({});
}

void EngineModels::loadCapabilities(const QString &name)
{
    if (name.isEmpty() || m_capabilities.contains(name) || m_asked.contains(name) || !engineRuns())
        return;
    m_asked.insert(name);
    launch([&] { return ask(this, name, m_stop.token()); });
}

Task<> EngineModels::ask(QPointer<EngineModels> self, QString name, StopToken stop)
{
    const OllamaClient client(self->m_engine.port());
    const auto details = co_await answerOf(client.show(name, stop));
    if (stop.stopRequested())
        co_return;
    self->m_asked.remove(name);
    if (details)
        self->setCapabilities(name, details->capabilities);
}

void EngineModels::remove(const QString &name)
{
    launch([&] { return removeAndRefresh(this, name, m_stop.token()); });
}

Task<> EngineModels::removeAndRefresh(QPointer<EngineModels> self, QString name, StopToken stop)
{
    co_await perform(self, &OllamaClient::deleteModel, name, stop);
}

void EngineModels::unload(const QString &name)
{
    if (isUnloading(name))
        return;
    setUnloading(name, true);
    launch([&] { return unloadAndWait(this, name, m_stop.token()); });
}

Task<> EngineModels::unloadAndWait(QPointer<EngineModels> self, QString name, StopToken stop)
{
    constexpr std::chrono::milliseconds pause(500);
    const bool agreed = co_await perform(self, &OllamaClient::unload, name, stop);
    if (stop.stopRequested())
        co_return;
    const QDeadlineTimer end(self->m_unloadPatience);
    while (agreed && self->engineRuns() && self->isLoaded(name) && !end.hasExpired()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end.remainingTimeAsDuration());
        const std::chrono::milliseconds next = std::min(pause, left);
        co_await sleepFor(next, stop);
        if (stop.stopRequested())
            co_return;
        co_await askForLoaded(self, stop);
        if (stop.stopRequested())
            co_return;
    }
    self->setUnloading(name, false);
}

// Whether the engine agreed.
Task<bool> EngineModels::perform(QPointer<EngineModels> self, Request request, QString name, StopToken stop)
{
    std::optional<QString> message;
    try {
        const OllamaClient client(self->m_engine.port());
        co_await (client.*request)(name, stop);
    } catch (...) {
        message = Friendly::message(std::current_exception());
    }
    if (stop.stopRequested())
        co_return false;
    if (message)
        Q_EMIT self->failed(*message);
    co_await pass(self, stop);
    co_return !message;
}

bool EngineModels::engineRuns() const
{
    return m_engine.state().kind == EngineManager::State::running;
}

void EngineModels::setInstalled(const InstalledIndex &installed)
{
    m_installed = installed;
    Q_EMIT installedChanged();
}

void EngineModels::setLoaded(const QList<LoadedModel> &loaded)
{
    if (std::exchange(m_loaded, loaded) == loaded)
        return;
    m_loadedNames.clear();
    for (const LoadedModel &model : std::as_const(m_loaded))
        m_loadedNames.insert(ModelCatalog::normalized(model.name));
    Q_EMIT loadedChanged();
}

void EngineModels::setUnloading(const QString &name, bool unloading)
{
    const QString normalized = ModelCatalog::normalized(name);
    if (unloading)
        m_unloading.insert(normalized);
    else
        m_unloading.remove(normalized);
    Q_EMIT unloadingChanged();
}

void EngineModels::setCapabilities(const QString &name, const QStringList &capabilities)
{
    m_capabilities.insert(name, capabilities);
    Q_EMIT capabilitiesChanged();
}
