#include "core/app/EngineModels.h"

#include "core/api/Friendly.h"
#include "core/api/OllamaClient.h"
#include "core/engine/EngineManager.h"
#include "core/models/ModelCatalog.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

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

template <class Model>
bool holds(const QList<Model> &models, const QString &name)
{
    const QString wanted = ModelCatalog::normalized(name);
    const auto isIt = [&wanted](const Model &model) {
        return ModelCatalog::normalized(model.name) == wanted;
    };
    return std::ranges::any_of(models, isIt);
}

} // namespace

EngineModels::EngineModels(const EngineManager &engine, QObject *parent) : QObject(parent), m_engine(engine)
{
    connect(&m_engine, &EngineManager::stateChanged, this, &EngineModels::followEngine);
}

EngineModels::~EngineModels()
{
    m_stop.requestStop();
}

bool EngineModels::isInstalled(const QString &name) const
{
    return holds(m_installed, name);
}

bool EngineModels::isLoaded(const QString &name) const
{
    return holds(m_loaded, name);
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
        self->setInstalled(*installed);
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
    launch([&] { return perform(this, &OllamaClient::deleteModel, name, m_stop.token()); });
}

void EngineModels::unload(const QString &name)
{
    launch([&] { return perform(this, &OllamaClient::unload, name, m_stop.token()); });
}

Task<> EngineModels::perform(QPointer<EngineModels> self, Request request, QString name, StopToken stop)
{
    std::optional<QString> message;
    try {
        const OllamaClient client(self->m_engine.port());
        co_await (client.*request)(name, stop);
    } catch (...) {
        message = Friendly::message(std::current_exception());
    }
    if (stop.stopRequested())
        co_return;
    if (message)
        Q_EMIT self->failed(*message);
    co_await pass(self, stop);
}

bool EngineModels::engineRuns() const
{
    return m_engine.state().kind == EngineManager::State::running;
}

void EngineModels::setInstalled(const QList<InstalledModel> &installed)
{
    if (std::exchange(m_installed, installed) != installed)
        Q_EMIT installedChanged();
}

void EngineModels::setLoaded(const QList<LoadedModel> &loaded)
{
    if (std::exchange(m_loaded, loaded) != loaded)
        Q_EMIT loadedChanged();
}

void EngineModels::setCapabilities(const QString &name, const QStringList &capabilities)
{
    m_capabilities.insert(name, capabilities);
    Q_EMIT capabilitiesChanged();
}
