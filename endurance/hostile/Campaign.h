// A user in the middle of everything that means harm: an engine that answers anything, a chats folder that
// holds anything, texts that say anything. Goes from case to case on the program with its window, and looks
// after each whether what was said before is still there.
#pragma once

#include "HostileCase.h"
#include "HostileServer.h"
#include "KeptChats.h"
#include "PauseWatch.h"
#include "core/app/AppState.h"
#include "platform/async/Task.h"
#include "support/FakeDesktop.h"
#include "support/Sandbox.h"

#include <QElapsedTimer>
#include <QList>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class MainWindow;

class Campaign
{
public:
    struct Plan
    {
        quint32 seed = 0;
        std::chrono::milliseconds duration{};
        std::chrono::milliseconds longestPause{}; // of processor time
        QRegularExpression only = {};             // the cases to go through
        QRegularExpression without = {};          // those to leave out, unless empty
    };

    explicit Campaign(const Plan &plan);
    ~Campaign();
    Campaign(const Campaign &) = delete;
    Campaign &operator=(const Campaign &) = delete;

    // Carries the plan out, says how it went, and ends the event loop; never throws.
    Task<> run();
    bool succeeded() const { return m_done && m_faults == 0; }

private:
    QList<HostileCase> cases() const;
    Task<> carryOut();
    Task<> perform(HostileCase what);
    Task<> askEngine(QString endpoint);
    Task<> restart();
    Task<> chat();
    Task<> pull();
    Task<> showDetails();
    Task<> useFile(QString name);
    Task<> useText(QString where, QString name);
    Task<> open();
    Task<> isQuiet();
    Task<> until(std::function<bool()> condition, std::chrono::milliseconds limit);

    void launch();
    void checkWhatIsKept();
    void judge();
    void fault(const QString &text);

    const Plan m_plan;
    QRandomGenerator m_random;
    PauseWatch m_watch;
    HostileServer m_engine;
    Sandbox m_sandbox;
    FakeDesktop m_desktop;
    std::optional<AppState> m_state;
    std::unique_ptr<MainWindow> m_window;
    std::optional<KeptChats> m_kept;
    QElapsedTimer m_clock;
    QString m_before; // the case before
    int m_models = 0; // asked about
    int m_performed = 0;
    int m_faults = 0;
    bool m_done = false;
};
