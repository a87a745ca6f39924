// The spine of the program: owns the engine manager, the download queue and the chat store, wires them
// together, keeps the lists of models current and carries out what the user asks for.
#pragma once

#include "core/api/InstalledModel.h"
#include "core/api/LoadedModel.h"
#include "core/app/AppTab.h"
#include "core/chat/ChatStore.h"
#include "core/chat/ModelSettings.h"
#include "core/engine/EngineManager.h"
#include "core/models/DownloadQueue.h"
#include "platform/async/Launch.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <chrono>
#include <memory>
#include <optional>

class Desktop;
class EngineModels;
class InstalledIndex;
class ReplyGenerator;
class UserDefaults;

class AppState : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        UserDefaults &defaults;
        Desktop &desktop;
        QString chatsFolder;
        EngineOptions engine = {};
        DownloadQueue::Seams downloads = {};
        std::chrono::milliseconds statusPause{4000};      // between two passes over the lists of models
        std::chrono::milliseconds unloadPatience{10'000}; // for a model to leave the engine's memory
        std::chrono::milliseconds longWait{3000};         // for a reply, before its model counts as awaited
        std::optional<quint64> memory = {};               // in bytes; absent: what is built into the machine
    };

    // Creates what it owns and begins its status loop in the next turn of the event loop.
    explicit AppState(const Dependencies &dependencies, QObject *parent = nullptr);
    // Requests under way are stopped.
    ~AppState() override;

    // The program's own state, for the main function: made by makeShared(), gone after dropShared().
    static AppState &shared();
    static AppState &makeShared(const Dependencies &dependencies);
    static void dropShared();

    EngineManager &engine() { return m_engine; }
    DownloadQueue &queue() { return m_queue; }
    ChatStore &chats() { return m_chats; }
    // The machine's physical memory in bytes.
    quint64 memory() const { return m_memory; }

    AppTab tab() const { return m_tab; }
    void setTab(AppTab tab);
    // The one message atop the main window; absent means that none shows.
    const std::optional<QString> &banner() const { return m_banner; }
    void setBanner(const std::optional<QString> &banner);

    // In the order of the engine; also with what is looked up in it.
    const QList<InstalledModel> &installed() const;
    const InstalledIndex &installedIndex() const;
    const QList<LoadedModel> &loaded() const;
    // What the engine says that each model can do, by the name it was asked under.
    const QHash<QString, QStringList> &capabilities() const;
    // All compare names in their normalised form. What is found first, or null when there is none; valid
    // until the next change.
    const InstalledModel *findInstalled(const QString &name) const;
    bool isInstalled(const QString &name) const { return findInstalled(name) != nullptr; }
    bool isLoaded(const QString &name) const;
    // Whether it has been asked to leave the engine's memory, and may yet do so.
    bool isUnloading(const QString &name) const;
    // One pass over the installed and the loaded list; never throws.
    Task<> refresh();
    // Asks once per run for what the model can do, while the engine runs; later calls find it cached.
    void loadCapabilities(const QString &name);
    // Both return at once; a failure becomes the banner, and the lists are refreshed in any case.
    void deleteModel(const QString &name);
    void unload(const QString &name);
    // Starts or stops the engine, and remembers the wish for the next launch.
    void setServer(bool on);

    // The model of a new chat; empty when none is installed.
    QString defaultModel() const;
    void newChat();
    // Shows a chat with `model`, an empty one that is selected rather than another new one.
    void openChat(const QString &model);

    // The conversation whose reply is streaming; at most one in the whole program.
    const std::optional<QUuid> &generatingID() const;
    // Whether its model has not answered for long and is not in memory, as far as is known.
    bool isLoadingModel() const;
    // Appends the user's message and has it answered. Returns whether the text was taken: it is not when it
    // is blank, while a reply streams or the program quits, nor where there is no such chat or it has no
    // model.
    bool send(const QString &text, const QUuid &id);
    // Replaces the last reply. Does nothing where send() would take no text.
    void regenerate(const QUuid &id);
    // Ends the reply that is streaming, if any; what has arrived stays.
    void stopGenerating();
    // Removes the last message of the user with all that follow it and returns its text; nothing while a
    // reply streams or the program quits, nor when there is none.
    std::optional<QString> takeLastUserMessage(const QUuid &id);
    // Asks for a file and writes the conversation to it; a failure becomes the banner.
    void exportMarkdown(const QUuid &id);

    const ModelSettingsMap &modelSettings() const { return m_modelSettings; }
    // The settings of `model`; the defaults while the user has set none.
    ModelSettings settings(const QString &model) const;
    void setSettings(const ModelSettings &settings, const QString &model);

Q_SIGNALS:
    // Once: the engine has been started, should it be wanted, and asked for its models.
    void started();
    void tabChanged();
    void installedChanged();
    void loadedChanged();
    void unloadingChanged();
    void capabilitiesChanged();
    void bannerChanged();
    void generatingIDChanged();
    // Before generatingIDChanged(); `message` is for the user, and has become the banner.
    void replyFailed(const QString &message);
    // With loadedChanged(), all that isLoadingModel() depends on.
    void awaitedModelChanged();
    void modelSettingsChanged();

private:
    void loadSettings();
    void setModelSettings(const ModelSettingsMap &settings);
    void wire();
    static Task<> statusLoop(QPointer<AppState> self, StopToken stop);
    static Task<> tellAwaited(QPointer<AppState> self, StopToken stop);
    static Task<> exportTo(QPointer<AppState> self, Conversation conversation, StopToken stop);
    // Whether a reply can begin; where the chat has no model, the banner says so.
    bool canGenerate(const QUuid &id);
    void generate(const QUuid &id);

    UserDefaults &m_defaults;
    Desktop &m_desktop;
    EngineManager m_engine;
    DownloadQueue m_queue;
    ChatStore m_chats;
    const quint64 m_memory;
    const std::chrono::milliseconds m_statusPause;
    AppTab m_tab = AppTab::models;
    std::optional<QString> m_banner;
    ModelSettingsMap m_modelSettings;
    const std::unique_ptr<EngineModels> m_models;
    const std::unique_ptr<ReplyGenerator> m_replies;
    StopSource m_stop{quitToken()};
};
