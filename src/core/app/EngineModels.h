// What is known of the engine's models: which are installed, which are in memory, what each of them can do.
// Both lists are asked for whenever the engine comes up, however that came about; one that does not run has
// nothing in memory.
#pragma once

#include "core/api/LoadedModel.h"
#include "core/models/InstalledIndex.h"
#include "platform/async/Launch.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QStringList>

#include <chrono>

class EngineManager;
class OllamaClient;

class EngineModels : public QObject
{
    Q_OBJECT

public:
    // `engine` is to outlive this. `unloadPatience` is how long a model may take to leave the engine's
    // memory.
    explicit EngineModels(const EngineManager &engine, std::chrono::milliseconds unloadPatience,
                          QObject *parent = nullptr);
    // Requests under way are stopped.
    ~EngineModels() override;

    const InstalledIndex &installed() const { return m_installed; }
    const QList<LoadedModel> &loaded() const { return m_loaded; }
    const QHash<QString, QStringList> &capabilities() const { return m_capabilities; }
    // All three compare names in their normalised form. What is found first, or null when there is none;
    // valid until the next change.
    const InstalledModel *findInstalled(const QString &name) const;
    bool isLoaded(const QString &name) const;
    // Whether it has been asked to leave the engine's memory, and may yet do so.
    bool isUnloading(const QString &name) const;

    // One pass over both lists; asks for nothing while the engine does not run. Failures are silent; never
    // throws.
    Task<> refresh();
    // Keeps what it learns under `name` for the whole run; failures are silent.
    void loadCapabilities(const QString &name);
    // Both refresh the lists in the end, also after failed(). The engine unloads a while after it has
    // answered.
    void remove(const QString &name);
    void unload(const QString &name);

Q_SIGNALS:
    void installedChanged();
    void loadedChanged();
    void unloadingChanged();
    void capabilitiesChanged();
    // A model could not be removed or unloaded; `message` is for the user.
    void failed(const QString &message);

private:
    using Request = Task<> (OllamaClient::*)(const QString &name, StopToken stop) const;

    static Task<> pass(QPointer<EngineModels> self, StopToken stop);
    static Task<> askForLoaded(QPointer<EngineModels> self, StopToken stop);
    static Task<> ask(QPointer<EngineModels> self, QString name, StopToken stop);
    static Task<bool> perform(QPointer<EngineModels> self, Request request, QString name, StopToken stop);
    static Task<> removeAndRefresh(QPointer<EngineModels> self, QString name, StopToken stop);
    static Task<> unloadAndWait(QPointer<EngineModels> self, QString name, StopToken stop);
    void followEngine();
    bool engineRuns() const;
    static Task<> takeInstalled(QPointer<EngineModels> self, QList<InstalledModel> installed, StopToken stop);
    void setInstalled(const InstalledIndex &installed);
    void setLoaded(const QList<LoadedModel> &loaded);
    void setUnloading(const QString &name, bool unloading);
    void setCapabilities(const QString &name, const QStringList &capabilities);

    const EngineManager &m_engine;
    const std::chrono::milliseconds m_unloadPatience;
    InstalledIndex m_installed;
    QList<LoadedModel> m_loaded;
    // By their normalised names: which are in memory or asked to leave it.
    QSet<QString> m_loadedNames;
    QSet<QString> m_unloading;
    QHash<QString, QStringList> m_capabilities;
    QSet<QString> m_asked; // for their capabilities, without an answer yet
    StopSource m_stop{quitToken()};
};
