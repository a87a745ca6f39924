// Somebody who uses the program for hours on end: chats, pulls and cancels, switches the server off and on,
// and has the engine die under all of it. Keeps a record of its own of every message, to compare the files
// with.
#pragma once

#include "ChatRecord.h"
#include "Resources.h"
#include "core/app/AppState.h"
#include "platform/async/Task.h"
#include "support/FakeDesktop.h"
#include "support/NoLoginItem.h"
#include "support/Sandbox.h"

#include <QElapsedTimer>
#include <QList>
#include <QMap>
#include <QRandomGenerator>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class MainWindow;

class LongUse
{
public:
    struct Plan
    {
        int sends = 0;
        int pulls = 0;
        int restarts = 0;
        int crashes = 0;
        quint32 seed = 0;
    };

    // Sets variables of this process's environment for the engine.
    explicit LongUse(const Plan &plan);
    ~LongUse();
    LongUse(const LongUse &) = delete;
    LongUse &operator=(const LongUse &) = delete;

    // Carries the plan out, says how it went, and ends the event loop; never throws.
    Task<> run();
    bool succeeded() const { return m_done && m_faults.isEmpty(); }

private:
    enum class Step
    {
        send,
        pull,
        restart,
        crash
    };

    Task<> carryOut();
    QList<Step> steps();
    Task<> perform(Step step);
    Task<> send();
    Task<> pull();
    Task<> restart();
    Task<> crash();

    Task<QUuid> conversationToUse();
    // Begins an answer, to a new message or to the last one anew; what had been said before it, and the
    // message.
    QString begin(const QUuid &id, ChatRecord::Messages &before);
    bool disturb(const QUuid &id);
    void lookAround();
    void tidyDownloads();

    void judge(const Resources &start, const Resources &tenth, const Resources &end);

    Task<> engineRuns();
    Task<Resources> atRest();
    Task<> until(QString what, std::function<bool()> condition);
    void later(int most, const std::function<void()> &action);
    QString chatsFolder() const { return m_sandbox.path(QStringLiteral("chats")); }
    // Does nothing for an empty text.
    void fault(const QString &text);
    void report(const QString &text) const;
    bool chance(int percent) { return m_random.bounded(100) < percent; }

    const Plan m_plan;
    const int m_mostConversations;
    QRandomGenerator m_random;
    Sandbox m_sandbox;
    FakeDesktop m_desktop;
    NoLoginItem m_loginItem;
    std::optional<AppState> m_state;
    std::unique_ptr<MainWindow> m_window;
    QElapsedTimer m_clock;

    ChatRecord m_record;
    int m_pendingActions = 0; // that wait for their moment
    int m_retired = 0;        // conversations that grew long, were compared and removed
    int m_changes = 0;        // of the engine's state
    int m_kills = 0;          // of the engine
    int m_restarts = 0;
    int m_pulls = 0;
    int m_cancels = 0;
    QMap<QString, int> m_sentences; // what the user was told, and how often
    QStringList m_faults;
    bool m_done = false;
};
