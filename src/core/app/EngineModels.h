// What is known of the engine's models: which are installed, which are in memory, what each of them can do.
// Both lists are asked for whenever the engine comes up, however that came about; one that does not run has
// nothing in memory.
#pragma once

#include "core/api/InstalledModel.h"
#include "core/api/LoadedModel.h"
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

class EngineManager;
class OllamaClient;

class EngineModels : public QObject
{
    Q_OBJECT

public:
    // `engine` is to outlive this.
    explicit EngineModels(const EngineManager &engine, QObject *parent = nullptr);
    // Requests under way are stopped.
    ~EngineModels() override;

    const QList<InstalledModel> &installed() const { return m_installed; }
    const QList<LoadedModel> &loaded() const { return m_loaded; }
    const QHash<QString, QStringList> &capabilities() const { return m_capabilities; }
    bool isInstalled(const QString &name) const;
    bool isLoaded(const QString &name) const;

    // One pass over both lists; asks for nothing while the engine does not run. Failures are silent; never
    // throws.
    Task<> refresh();
    // Keeps what it learns under `name` for the whole run; failures are silent.
    void loadCapabilities(const QString &name);
    // Both refresh the lists in the end, also after failed().
    void remove(const QString &name);
    void unload(const QString &name);

Q_SIGNALS:
    void installedChanged();
    void loadedChanged();
    void capabilitiesChanged();
    // A model could not be removed or unloaded; `message` is for the user.
    void failed(const QString &message);

private:
    using Request = Task<> (OllamaClient::*)(const QString &name, StopToken stop) const;

    static Task<> pass(QPointer<EngineModels> self, StopToken stop);
    static Task<> ask(QPointer<EngineModels> self, QString name, StopToken stop);
    static Task<> perform(QPointer<EngineModels> self, Request request, QString name, StopToken stop);
    void followEngine();
    bool engineRuns() const;
    void setInstalled(const QList<InstalledModel> &installed);
    void setLoaded(const QList<LoadedModel> &loaded);
    void setCapabilities(const QString &name, const QStringList &capabilities);

    const EngineManager &m_engine;
    QList<InstalledModel> m_installed;
    QList<LoadedModel> m_loaded;
    QHash<QString, QStringList> m_capabilities;
    QSet<QString> m_asked; // for their capabilities, without an answer yet
    StopSource m_stop{quitToken()};
};
