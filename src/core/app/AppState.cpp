#include "core/app/AppState.h"

#include "core/app/ChatGeneration.h"
#include "core/app/EngineModels.h"
#include "core/app/ReplyGenerator.h"
#include "core/chat/ExportFileName.h"
#include "platform/async/Sleep.h"
#include "platform/async/WorkerQueue.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/desktop/Desktop.h"
#include "platform/error/Error.h"
#include "platform/files/AtomicFile.h"
#include "platform/machine/Machine.h"
#include "platform/text/OutsideText.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString serverWantedKey = u"serverWanted"_s;
const QString modelSettingsKey = u"modelSettings"_s;

// The engine's panel is one of the program's.
EngineOptions engineOptions(const AppState::Dependencies &dependencies)
{
    EngineOptions options = dependencies.engine;
    options.desktop = &dependencies.desktop;
    return options;
}

std::unique_ptr<AppState> &sharedState()
{
    static std::unique_ptr<AppState> state;
    return state;
}

} // namespace

AppState::AppState(const Dependencies &dependencies, QObject *parent)
    : QObject(parent),
      m_defaults(dependencies.defaults),
      m_desktop(dependencies.desktop),
      m_engine(dependencies.defaults, engineOptions(dependencies)),
      m_queue(dependencies.downloads),
      m_chats(dependencies.chatsFolder),
      m_memory(dependencies.memory ? *dependencies.memory : physicalMemory()),
      m_statusPause(dependencies.statusPause),
      m_models(std::make_unique<EngineModels>(m_engine, dependencies.unloadPatience)),
      m_replies(std::make_unique<ReplyGenerator>(m_engine, m_chats, dependencies.longWait))
{
    m_defaults.registerDefault(serverWantedKey, true);
    loadSettings();
    wire();
    launch([this] { return statusLoop(this, m_stop.token()); });
}

AppState::~AppState()
{
    m_stop.requestStop();
}

AppState &AppState::shared()
{
    return *sharedState();
}

AppState &AppState::makeShared(const Dependencies &dependencies)
{
    sharedState() = std::make_unique<AppState>(dependencies);
    return shared();
}

void AppState::dropShared()
{
    sharedState().reset();
}

void AppState::wire()
{
    m_queue.setEngine(&m_engine);
    m_engine.endPull = [this] { return m_queue.endTransfer(); };
    m_queue.onInstalledChanged = [this] { launch([this] { return refresh(); }); };
    m_queue.onMessage = [this](const QString &message) { setBanner(message); };

    connect(m_models.get(), &EngineModels::installedChanged, this, &AppState::installedChanged);
    connect(m_models.get(), &EngineModels::loadedChanged, this, &AppState::loadedChanged);
    connect(m_models.get(), &EngineModels::unloadingChanged, this, &AppState::unloadingChanged);
    connect(m_models.get(), &EngineModels::capabilitiesChanged, this, &AppState::capabilitiesChanged);
    connect(m_models.get(), &EngineModels::failed, this, &AppState::setBanner);
    connect(m_replies.get(), &ReplyGenerator::generatingIDChanged, this, &AppState::generatingIDChanged);
    connect(m_replies.get(), &ReplyGenerator::awaitedModelChanged, this,
            [this] { launch([this] { return tellAwaited(this, m_stop.token()); }); });
    connect(m_replies.get(), &ReplyGenerator::failed, this, &AppState::setBanner);
    connect(m_replies.get(), &ReplyGenerator::failed, this, &AppState::replyFailed);
    connect(m_replies.get(), &ReplyGenerator::finished, this,
            [this] { launch([this] { return refresh(); }); });
}

Task<> AppState::statusLoop(QPointer<AppState> self, StopToken stop)
{
    // Whoever makes the state is to see it whole before anything of it changes.
    const std::chrono::milliseconds nextTurn(0);
    co_await sleepFor(nextTurn, stop);
    if (stop.stopRequested())
        co_return;
    if (!self->m_engine.enginePath().isEmpty() && self->m_defaults.boolean(serverWantedKey))
        co_await self->m_engine.start();
    if (stop.stopRequested())
        co_return;
    co_await self->refresh();
    if (!stop.stopRequested())
        Q_EMIT self->started();
    while (!stop.stopRequested()) {
        co_await sleepFor(self->m_statusPause, stop);
        if (!stop.stopRequested())
            co_await self->m_engine.watchAdopted();
        if (!stop.stopRequested())
            co_await self->refresh();
    }
}

// Not before it is known whether the model is in memory by now.
Task<> AppState::tellAwaited(QPointer<AppState> self, StopToken stop)
{
    co_await self->refresh();
    if (!stop.stopRequested())
        Q_EMIT self->awaitedModelChanged();
}

void AppState::setTab(AppTab tab)
{
    if (std::exchange(m_tab, tab) != tab)
        Q_EMIT tabChanged();
}

void AppState::setBanner(const std::optional<QString> &banner)
{
    if (std::exchange(m_banner, banner) != banner)
        Q_EMIT bannerChanged();
}

const QList<InstalledModel> &AppState::installed() const
{
    return m_models->installed().models();
}

const InstalledIndex &AppState::installedIndex() const
{
    return m_models->installed();
}

const QList<LoadedModel> &AppState::loaded() const
{
    return m_models->loaded();
}

const QHash<QString, QStringList> &AppState::capabilities() const
{
    return m_models->capabilities();
}

const InstalledModel *AppState::findInstalled(const QString &name) const
{
    return m_models->findInstalled(name);
}

bool AppState::isLoaded(const QString &name) const
{
    return m_models->isLoaded(name);
}

bool AppState::isUnloading(const QString &name) const
{
    return m_models->isUnloading(name);
}

Task<> AppState::refresh()
{
    return m_models->refresh();
}

void AppState::loadCapabilities(const QString &name)
{
    m_models->loadCapabilities(name);
}

void AppState::deleteModel(const QString &name)
{
    m_models->remove(name);
}

void AppState::unload(const QString &name)
{
    m_models->unload(name);
}

void AppState::setServer(bool on)
{
    m_defaults.set(serverWantedKey, on);
    if (on)
        launch([this] { return m_engine.start(); });
    else
        m_engine.stop();
}

QString AppState::defaultModel() const
{
    const QList<Conversation> &conversations = m_chats.conversations();
    if (!conversations.isEmpty() && isInstalled(conversations.first().model))
        return conversations.first().model;
    return installed().isEmpty() ? QString() : installed().first().name;
}

void AppState::newChat()
{
    if (installed().isEmpty()) {
        setBanner(tr("Download a model first, then you can chat with it."));
        setTab(AppTab::models);
        return;
    }
    m_chats.newConversation(defaultModel());
    setTab(AppTab::chat);
}

void AppState::openChat(const QString &model)
{
    const std::optional<QUuid> selected = m_chats.selectedID();
    const Conversation *const shown = selected ? m_chats.find(*selected) : nullptr;
    if (shown && shown->messages.isEmpty()) {
        m_chats.mutate(*selected, [&model](Conversation &conversation) { conversation.model = model; });
        m_chats.commit(*selected);
    } else {
        m_chats.newConversation(model);
    }
    setTab(AppTab::chat);
}

const std::optional<QUuid> &AppState::generatingID() const
{
    return m_replies->generatingID();
}

bool AppState::isLoadingModel() const
{
    const QString &awaited = m_replies->awaitedModel();
    return !awaited.isEmpty() && !isLoaded(awaited);
}

bool AppState::send(const QString &text, const QUuid &id)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || !canGenerate(id))
        return false;
    m_chats.mutate(id, [&trimmed](Conversation &conversation) {
        conversation.messages.append(ChatMessage::make(u"user"_s, trimmed));
        if (conversation.title == Conversation::newTitle())
            conversation.title = ChatGeneration::titleFrom(trimmed);
    });
    generate(id);
    return true;
}

bool AppState::canGenerate(const QUuid &id)
{
    // Once quitting has begun no task would come to clear the mark again.
    if (generatingID() || quitToken().stopRequested())
        return false;
    const Conversation *const conversation = m_chats.find(id);
    if (conversation && conversation->model.isEmpty())
        setBanner(tr("Pick an installed model at the top of the chat first."));
    return conversation && !conversation->model.isEmpty();
}

void AppState::generate(const QUuid &id)
{
    const Conversation &conversation = *m_chats.find(id);
    const QString model = conversation.model;
    m_replies->start(id, ChatGeneration::request(conversation, settings(model), capabilities().value(model)));
}

void AppState::regenerate(const QUuid &id)
{
    if (!canGenerate(id))
        return;
    const QList<ChatMessage> &messages = m_chats.find(id)->messages;
    if (!messages.isEmpty() && messages.last().role == "assistant"_L1)
        m_chats.mutate(id, [](Conversation &changed) { changed.messages.removeLast(); });
    generate(id);
}

void AppState::stopGenerating()
{
    m_replies->stop();
}

std::optional<QString> AppState::takeLastUserMessage(const QUuid &id)
{
    const Conversation *const conversation = m_chats.find(id);
    if (generatingID() || quitToken().stopRequested() || !conversation)
        return std::nullopt;
    const QList<ChatMessage> messages = conversation->messages;
    const auto isUsers = [](const ChatMessage &message) { return message.role == "user"_L1; };
    const auto last = std::find_if(messages.crbegin(), messages.crend(), isUsers);
    if (last == messages.crend())
        return std::nullopt;
    const qsizetype kept = std::distance(last, messages.crend()) - 1;
    m_chats.mutate(id, [kept](Conversation &changed) { changed.messages.resize(kept); });
    m_chats.commit(id);
    return last->content;
}

void AppState::exportMarkdown(const QUuid &id)
{
    if (const auto conversation = m_chats.conversation(id))
        launch([&] { return exportTo(this, *conversation, m_stop.token()); });
}

Task<> AppState::exportTo(QPointer<AppState> self, Conversation conversation, StopToken stop)
{
    const QString proposal = exportFileName(conversation.title);
    const auto path = co_await self->m_desktop.chooseSaveFile(proposal);
    if (!path || stop.stopRequested())
        co_return;
    const auto write = [&path, &conversation] {
        const QByteArray document = ChatStore::markdown(conversation).toUtf8();
        AtomicFile::write(*path, document, AtomicFile::Access::asUsual);
    };
    QString description;
    bool written = false;
    try {
        co_await WorkerQueue::shared().run(write);
        written = true;
    } catch (...) {
        description = errorDescription(std::current_exception());
    }
    if (!written && !stop.stopRequested())
        self->setBanner(tr("Could not save the file: %1").arg(isolated(description)));
}

ModelSettings AppState::settings(const QString &model) const
{
    return m_modelSettings.value(model);
}

void AppState::setSettings(const ModelSettings &settings, const QString &model)
{
    ModelSettingsMap changed = m_modelSettings;
    changed.insert(model, settings);
    setModelSettings(changed);
}

void AppState::loadSettings()
{
    if (const auto bytes = m_defaults.data(modelSettingsKey)) {
        if (const auto stored = decodeModelSettings(*bytes))
            setModelSettings(*stored);
    }
}

void AppState::setModelSettings(const ModelSettingsMap &settings)
{
    const bool isChanged = std::exchange(m_modelSettings, settings) != settings;
    if (const auto bytes = encodeModelSettings(settings))
        m_defaults.set(modelSettingsKey, *bytes);
    if (isChanged)
        Q_EMIT modelSettingsChanged();
}
