// Owns the engine: finds or installs its program, starts it as a private server, watches it and stops it.
#pragma once

#include "core/engine/AdoptedServer.h"
#include "core/engine/ChildProcessHolder.h"
#include "core/engine/EngineInstaller.h"
#include "core/engine/LaunchedEngines.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>

class UserDefaults;

// What a test replaces; the defaults are what the program uses.
struct EngineOptions
{
    // Where an engine installed for the whole machine is looked for, in this order.
    QStringList installPlaces = standardInstallPlaces();
    // How often a launched engine is asked whether it answers, and the pause after each time it does not.
    int attempts = 120;
    std::chrono::milliseconds pause{500};
    // How long a start waits for the end of an engine of this program's that is still there, before it kills
    // it.
    std::chrono::milliseconds endLimit{10'000};
    // Where the running engine is kept for whoever ends it when the program quits.
    ChildProcessHolder *holder = &ChildProcessHolder::shared();
    InstallerOptions installer;
    // Shows the panel in which the user chooses a program; without it nothing can be chosen.
    Desktop *desktop = nullptr;

    static QStringList standardInstallPlaces();
};

// Main thread. Destroying the manager gives up a start that is under way and leaves the engine running.
class EngineManager : public QObject
{
    Q_OBJECT

public:
    struct State
    {
        enum Kind
        {
            notInstalled,
            stopped,
            starting,
            running,
            failed
        };

        Kind kind = stopped;
        QString message; // the complete sentence for the user when `kind` is failed, else empty

        bool operator==(const State &) const = default;
    };

    // `defaults` must outlive the manager.
    explicit EngineManager(UserDefaults &defaults, EngineOptions options = {}, QObject *parent = nullptr);
    ~EngineManager() override;

    const State &state() const { return m_state; }
    // Starting or running.
    bool isOn() const { return m_state.kind == State::starting || m_state.kind == State::running; }
    // The engine program in use; empty when there is none.
    const QString &enginePath() const { return m_enginePath; }
    // Empty until an engine has told.
    const QString &engineVersion() const { return m_engineVersion; }
    // The start waits for an earlier engine of this program's, which is still ending.
    bool previousIsEnding() const { return m_previousIsEnding; }
    // The server in use while it is not this program's, else null. It changes with the state.
    const AdoptedServer *adoptedServer() const { return m_adopted ? &*m_adopted : nullptr; }
    // An engine that this program launched has not been told to end, whatever the state says: one that an
    // installation has left running serves on.
    bool hasEngine() const { return m_launched.isOneInUse(); }
    // The last lines of the engine's output, oldest first, at most 80.
    const QStringList &logLines() const { return m_logLines; }
    // The last start or run failed because another program uses the port.
    bool portConflict() const { return m_portConflict; }
    // The TCP port to serve on; a stored value is used as it is, out of range or not.
    int port() const { return m_port; }
    // Serve on all interfaces instead of the loopback address.
    bool shareOnNetwork() const { return m_shareOnNetwork; }
    // Where the engine is reached from this machine, "http://127.0.0.1:{port}".
    QString address() const;

    // Stored at once; they take effect at the next start.
    void setPort(int port);
    void setShareOnNetwork(bool share);

    // The engine program to use, looked for anew; empty when there is none.
    QString locate() const;

    // Called before an engine is asked to end: ends the pull that runs in it, if there is one, and says
    // whether there was.
    std::function<bool()> endPull;

    // Brings the engine to running, notInstalled or failed. Returns when that is settled or the start was
    // given up, also when another call has begun it; at once while the engine runs, and once quitting has
    // begun. Never throws. An engine of this program's that is still there is ended first; a server of
    // somebody else's that answers is used.
    Task<> start();
    // Asks the engine that this manager launched to end and does not wait for it. A server that was found
    // already answering is left alone.
    void stop();
    // Asks a server that is another program's whether it is still there. The state is failed once it was
    // silent twice in a row. To be called now and then; never throws.
    Task<> watchAdopted();
    // Moves to the next free port, and starts there.
    Task<> useAnotherPort();

    // See EngineInstaller. An installed engine becomes the one in use, and the state stopped, whatever runs;
    // a chosen one is used from the next start on.
    const std::optional<InstallStatus> &install() const { return m_installer.install(); }
    const std::optional<QString> &installError() const { return m_installer.installError(); }
    bool isCheckingChoice() const { return m_installer.isCheckingChoice(); }
    const Job &installTask() const { return m_installer.installTask(); }
    void startInstall() { m_installer.startInstall(); }
    void chooseManually() { m_installer.chooseManually(); }

Q_SIGNALS:
    void stateChanged();
    void enginePathChanged();
    void engineVersionChanged();
    void logLinesChanged();
    void previousIsEndingChanged();
    void portConflictChanged();
    void portChanged();
    void shareOnNetworkChanged();
    void installChanged();
    void installErrorChanged();
    void choiceCheckChanged();

private:
    StopToken beginStart(const QString &program);
    Task<> startAnew();
    Task<> startSettled();
    Task<> endOldEngines(StopToken token);
    Task<bool> adopt(StopToken token);
    bool launchEngine(const QString &program);
    Task<> waitForAnswer(StopToken token);
    void retireEngine();
    void takeCrash();

    void takeInstalled(const QString &program, const QString &version);
    void takeChosen(const QString &program, const QString &version);

    void appendLog(const QString &text);
    void setRunning(const QString &version);
    void fail(const QString &message);
    void failForTakenPort();
    void failForLostEngine();
    void setState(const State &state);
    void setEnginePath(const QString &path);
    void setEngineVersion(const QString &version);
    void setPreviousIsEnding(bool ending);
    void setPortConflict(bool conflict);

    UserDefaults &m_defaults;
    const EngineOptions m_options;
    EngineInstaller m_installer;

    State m_state;
    QString m_enginePath;
    QString m_engineVersion;
    QStringList m_logLines;
    bool m_previousIsEnding = false;
    bool m_portConflict = false;
    int m_port = 0;
    bool m_shareOnNetwork = false;

    LaunchedEngines m_launched;
    std::optional<AdoptedServer> m_adopted;
    StopSource m_starting; // of the start under way, or of the last one
    StopSource m_settled;  // asks once the state is no longer starting
};
