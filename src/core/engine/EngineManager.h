// Owns the engine: finds or installs its program, starts it as a private server, watches it and stops it.
#pragma once

#include "core/engine/ChildProcess.h"
#include "core/engine/ChildProcessHolder.h"
#include "core/engine/EngineInstaller.h"
#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
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
    // How long a start waits for the end of an engine that was told to stop before.
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

    // Brings the engine to running, notInstalled or failed. Returns when that is settled or the start was
    // given up; at once while it is on, and once quitting has begun. Never throws.
    Task<> start();
    // Asks the engine that this manager launched to end and does not wait for it. A server that was found
    // already answering is left alone.
    void stop();
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
    void portConflictChanged();
    void portChanged();
    void shareOnNetworkChanged();
    void installChanged();
    void installErrorChanged();
    void choiceCheckChanged();

private:
    // An engine that this manager launched.
    struct Engine
    {
        std::shared_ptr<ChildProcess> process;
        int port = 0;  // it was told to serve on
        int start = 0; // the number of the start that launched it
    };

    StopToken beginStart(const QString &program);
    bool launchEngine(const QString &program);
    void engineWrote(int start, const QByteArray &chunk);
    void engineEnded(int start);
    bool portHeldByOldEngine() const;

    void takeInstalled(const QString &program, const QString &version);
    void takeChosen(const QString &program, const QString &version);

    void appendLog(const QString &text);
    void setRunning(const QString &version);
    void fail(const QString &message);
    void failForTakenPort();
    void setState(const State &state);
    void setEnginePath(const QString &path);
    void setEngineVersion(const QString &version);
    void setPortConflict(bool conflict);

    UserDefaults &m_defaults;
    const EngineOptions m_options;
    EngineInstaller m_installer;

    State m_state;
    QString m_enginePath;
    QString m_engineVersion;
    QStringList m_logLines;
    bool m_portConflict = false;
    int m_port = 0;
    bool m_shareOnNetwork = false;

    std::optional<Engine> m_current;
    QList<Engine> m_ending;       // told to stop and still alive
    int m_starts = 0;             // how many there have been
    StopSource m_starting;        // of the start under way, or of the last one
    StopSource m_oldEnginesEnded; // of the pause in which a start waits for m_ending
};
