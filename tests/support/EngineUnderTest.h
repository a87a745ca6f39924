// An engine manager in a sandbox, which launches the stand-in engine, and what a test of it asks again and
// again.
#pragma once

#include "core/engine/EngineManager.h"
#include "support/Sandbox.h"

#include <QList>
#include <QString>

#include <optional>

class EngineUnderTest
{
public:
    // The stand-in engine, or the script in which "demo" stands for it, is the chosen one.
    explicit EngineUnderTest(const QString &script = {},
                             const EngineOptions &options = Sandbox::engineOptions());
    // Stops the engine and waits for its end; one that does not end ends the test program.
    ~EngineUnderTest();
    EngineUnderTest(const EngineUnderTest &) = delete;
    EngineUnderTest &operator=(const EngineUnderTest &) = delete;

    EngineManager *operator->() { return &*m_manager; }
    EngineManager *get() { return &*m_manager; }
    EngineManager::State::Kind kind() const { return m_manager->state().kind; }
    QString log() const { return m_manager->logLines().join(u'\n'); }
    UserDefaults &defaults() { return sandbox.defaults(); }

    // Makes the manager anew on the same settings.
    void remake(const EngineOptions &options = Sandbox::engineOptions());
    void drop() { m_manager.reset(); }
    // Starts, and waits until that is settled.
    void start();
    // The task of a start whose engine has been launched and does not answer for minutes.
    Task<> startSlowly();
    // A script that runs the stand-in engine so that engineId() tells its process id.
    static QString knownById() { return QStringLiteral("echo $$ > \"$0.pid\"; exec demo \"$@\""); }
    int engineId() const;

    Sandbox sandbox;
    QList<EngineManager::State> states; // since the manager was made

private:
    std::optional<EngineManager> m_manager;
};
