#include "LongUse.h"

#include "platform/async/Sleep.h"
#include "platform/error/SimpleError.h"
#include "ui/app/MainWindow.h"
#include "ui/app/SettingsView.h"

#include <QCoreApplication>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Kind = EngineManager::State::Kind;
using Phase = DownloadItem::Phase;

namespace {

constexpr int patience = 120'000; // ms
constexpr auto glance = 1ms;
constexpr auto second = 1000ms;
constexpr auto settling = 200ms;        // for connections to close behind the engine
constexpr int tasksThatStay = 2;        // the state's own loop, and the one that uses it
constexpr int enoughToJudge = 1000;     // messages; with fewer, the first tenth is still warming up
constexpr int mostAttempts = 20;        // to start the engine
constexpr int longestConversation = 30; // messages

AppState::Dependencies dependencies(Sandbox &sandbox, Desktop &desktop)
{
    return {.defaults = sandbox.defaults(),
            .desktop = desktop,
            .chatsFolder = sandbox.path(u"chats"_s),
            .engine = Sandbox::engineOptions(),
            .downloads = {.freeBytes = [](const QString &) { return std::optional<qint64>(); }},
            .statusPause = 50ms};
}

bool isActive(const DownloadItem &item)
{
    return item.phase.kind == Phase::queued || item.phase.kind == Phase::running;
}

} // namespace

LongUse::LongUse(const Plan &plan)
    : m_plan(plan), m_mostConversations(std::clamp(plan.sends / 100, 4, 24)), m_random(plan.seed)
{
    qputenv("DEMO_ENGINE_INSTALLED", "phi3.5,qwen3:4b");
    qputenv("DEMO_ENGINE_READY_MS", "10");
    qputenv("DEMO_ENGINE_LOAD_MS", "0");
    m_sandbox.chooseEngine();
    m_state.emplace(dependencies(m_sandbox, m_desktop));
    m_window = std::make_unique<MainWindow>(*m_state, m_desktop, m_sandbox.defaults());
    m_window->show();
    QObject::connect(&m_state->engine(), &EngineManager::stateChanged, m_window.get(),
                     [this] { ++m_changes; });
    m_clock.start();
}

LongUse::~LongUse() = default;

Task<> LongUse::run()
{
    try {
        co_await carryOut();
        m_done = true;
    } catch (const Error &error) {
        fault(error.description());
    }
    QCoreApplication::exit(succeeded() ? 0 : 1);
}

Task<> LongUse::carryOut()
{
    // What is made once and kept, such as the threads of the pools, is there before anything is counted.
    for (const Step step : {Step::send, Step::pull, Step::crash, Step::send, Step::restart, Step::send})
        co_await perform(step);
    const Resources start = co_await atRest();
    report(u"at the start: "_s + start.text());
    const int killsBefore = m_kills;

    const QList<Step> plan = steps();
    Resources tenth;
    for (qsizetype done = 0; done < plan.size(); ++done) {
        co_await perform(plan[done]);
        if ((done + 1) % std::max<qsizetype>(plan.size() / 10, 1) != 0)
            continue;
        const Resources now = co_await atRest();
        if (tenth.resident == 0)
            tenth = now;
        report(u"%1 of %2 steps: %3"_s.arg(done + 1).arg(plan.size()).arg(now.text()));
    }
    while (m_kills - killsBefore < m_plan.crashes)
        co_await perform(Step::crash);

    // Idle connections and the threads of Qt's own pool go after two minutes at most.
    Resources end = co_await atRest();
    for (int i = 0; i < 150 && !end.holdsNoMoreThan(start); ++i) {
        co_await sleepFor(second);
        end = Resources::now();
    }
    report(u"at the end: "_s + end.text());
    const QStringList wrong = m_record.compare(chatsFolder());
    for (const QString &text : wrong)
        fault(text);
    judge(start, tenth, end);
}

QList<LongUse::Step> LongUse::steps()
{
    QList<Step> plan;
    plan += QList<Step>(m_plan.sends, Step::send);
    plan += QList<Step>(m_plan.pulls, Step::pull);
    plan += QList<Step>(m_plan.restarts, Step::restart);
    plan += QList<Step>(m_plan.crashes, Step::crash);
    std::shuffle(plan.begin(), plan.end(), m_random);
    return plan;
}

Task<> LongUse::perform(Step step)
{
    if (chance(10))
        lookAround();
    if (step == Step::send)
        return send();
    if (step == Step::pull)
        return pull();
    return step == Step::restart ? restart() : crash();
}

Task<> LongUse::send()
{
    const QUuid id = co_await conversationToUse();
    if (chance(60))
        m_state->chats().setSelectedID(id);
    m_state->setBanner(std::nullopt);
    const bool calm = m_pendingActions == 0 && m_state->engine().state().kind == Kind::running;
    const int changes = m_changes;
    const int cut = m_record.cutAnswers();
    ChatRecord::Messages before;
    const QString sent = begin(id, before);
    const bool disturbed = disturb(id);
    const auto ended = [this] { return !m_state->generatingID() && m_pendingActions == 0; };
    co_await until(u"The end of an answer"_s, ended);
    if (m_record.contains(id))
        fault(m_record.take(m_state->chats().find(id), before, sent, disturbed || m_state->banner()));
    if (m_state->banner())
        ++m_sentences[*m_state->banner()];
    if (!m_state->banner() || cut == m_record.cutAnswers() || !calm || changes != m_changes)
        co_return;
    // The end of an engine that was killed may be noticed here first.
    co_await sleepFor(settling);
    if (changes == m_changes)
        fault(u"The engine ran all along, and yet: %1"_s.arg(*m_state->banner()));
}

Task<QUuid> LongUse::conversationToUse()
{
    const QList<QUuid> &kept = m_record.ids();
    if (kept.isEmpty() || (kept.size() < m_mostConversations && chance(20))) {
        const QString model = chance(50) ? u"phi3.5"_s : u"qwen3:4b"_s;
        m_record.add(m_state->chats().newConversation(model).id);
        co_return kept.last();
    }
    const QUuid id = kept[m_random.bounded(kept.size())];
    if (m_record.of(id).size() < longestConversation)
        co_return id;
    const auto written = [this] { return m_state->chats().pendingSaves() == 0; };
    co_await until(u"The writing of a file"_s, written);
    fault(m_record.compareFile(chatsFolder(), id));
    ++m_retired;
    m_record.remove(id);
    m_state->chats().deleteConversation(id);
    co_return co_await conversationToUse();
}

QString LongUse::begin(const QUuid &id, ChatRecord::Messages &before)
{
    before = m_record.of(id);
    const auto isUsers = [](const ChatMessage &message) { return message.role == "user"_L1; };
    const auto last = std::find_if(before.crbegin(), before.crend(), isUsers);
    const bool again = last != before.crend() && chance(10);
    const QString sent = again ? last->content : ChatRecord::newMessage(m_random);
    if (again)
        before.resize(std::distance(last, before.crend()) - 1);
    if (again && chance(50)) {
        if (m_state->takeLastUserMessage(id) != sent)
            fault(u"Another message than the last one was taken back."_s);
    } else if (again) {
        m_state->regenerate(id);
        return sent;
    }
    m_state->send(sent, id);
    return sent;
}

// Whether the answer may end early for it.
bool LongUse::disturb(const QUuid &id)
{
    const int what = m_random.bounded(100);
    if (what < 8) {
        later(20, [this] { m_state->stopGenerating(); });
        return true;
    }
    if (what < 9 && m_record.ids().size() > 1) {
        later(20, [this, id] {
            m_record.remove(id);
            m_state->chats().deleteConversation(id);
        });
    } else if (what < 20) {
        later(20, [this] { lookAround(); });
    }
    return false;
}

void LongUse::lookAround()
{
    switch (m_random.bounded(6)) {
    case 0:
    case 1:
        m_state->setTab(chance(50) ? AppTab::models : AppTab::server);
        break;
    case 2:
        if (auto *const search = m_window->findChild<QLineEdit *>())
            search->setText(search->text().isEmpty() ? u"title"_s : QString());
        break;
    case 3: {
        auto *const settings =
            new SettingsView(*m_state, m_desktop, m_sandbox.defaults(), m_loginItem, m_window.get());
        settings->setAttribute(Qt::WA_DeleteOnClose);
        settings->show();
        later(30, [settings] { settings->close(); });
        break;
    }
    default:
        m_state->setTab(AppTab::chat);
        if (const QList<QUuid> &kept = m_record.ids(); !kept.isEmpty())
            m_state->chats().setSelectedID(kept[m_random.bounded(kept.size())]);
    }
}

Task<> LongUse::pull()
{
    DownloadQueue &queue = m_state->queue();
    const auto isShort = [&queue] { return std::ranges::count_if(queue.items(), isActive) < 3; };
    co_await until(u"A free place in the queue"_s, isShort);
    tidyDownloads();
    QString name;
    const DownloadItem *present = nullptr;
    do {
        name = u"model-%1"_s.arg(m_random.bounded(12));
        present = queue.item(name);
    } while (present && isActive(*present));
    if (m_state->isInstalled(name) && chance(60))
        m_state->deleteModel(name);
    queue.enqueue(name, {});
    ++m_pulls;
    if (!chance(50))
        co_return;
    ++m_cancels;
    later(80, [this, name] { m_state->queue().cancel(name); });
}

void LongUse::tidyDownloads()
{
    const QList<DownloadItem> items = m_state->queue().items();
    for (const DownloadItem &item : items) {
        if (item.phase.kind == Phase::failed)
            ++m_sentences[item.phase.message];
        if (item.phase.kind == Phase::failed || (!isActive(item) && chance(50)))
            m_state->queue().dismiss(item.pullName);
    }
}

Task<> LongUse::restart()
{
    co_await engineRuns();
    ++m_restarts;
    qputenv("DEMO_ENGINE_PULL_MS", chance(50) ? "0" : "60");
    qputenv("DEMO_ENGINE_CHUNK_MS", chance(80) ? "0" : "1");
    later(30, [this] {
        m_state->setServer(false);
        later(60, [this] { m_state->setServer(true); });
    });
}

Task<> LongUse::crash()
{
    co_await engineRuns();
    if (chance(25)) {
        m_state->setServer(false);
        m_state->setServer(true);
    }
    later(60, [this] { m_kills += killPrograms() ? 1 : 0; });
}

Task<> LongUse::engineRuns()
{
    const auto nothingPends = [this] { return m_pendingActions == 0; };
    co_await until(u"The end of what was begun"_s, nothingPends);
    const EngineManager &engine = m_state->engine();
    const auto isSettled = [&engine] { return engine.state().kind != Kind::starting; };
    for (int attempt = 0; engine.state().kind != Kind::running; ++attempt) {
        if (attempt == mostAttempts)
            throw SimpleError(u"The engine does not start: "_s + engine.state().message);
        if (engine.state().kind == Kind::failed)
            ++m_sentences[engine.state().message];
        m_state->setServer(true);
        co_await until(u"The start of the engine"_s, isSettled);
    }
}

// Everything has come to its end, the engine is off, and no chat is shown.
Task<Resources> LongUse::atRest()
{
    co_await engineRuns();
    const QList<DownloadItem> items = m_state->queue().items();
    for (const DownloadItem &item : items)
        m_state->queue().cancel(item.pullName);
    const auto isIdle = [this] { return !std::ranges::any_of(m_state->queue().items(), isActive); };
    co_await until(u"The end of the downloads"_s, isIdle);
    tidyDownloads();
    m_state->chats().setSelectedID(std::nullopt);
    m_state->setTab(AppTab::models);
    m_state->setServer(false);
    const auto isQuiet = [this] {
        return runningTasks() <= tasksThatStay && m_state->chats().pendingSaves() == 0 &&
               childProcesses().isEmpty();
    };
    co_await until(u"Quiet"_s, isQuiet);
    co_await sleepFor(settling);
    co_return Resources::now();
}

void LongUse::judge(const Resources &start, const Resources &tenth, const Resources &end)
{
    if (!end.holdsNoMoreThan(start))
        fault(u"More is held at the end than at the start."_s);
    const auto growth = [](qint64 before, qint64 after) {
        return 100.0 * static_cast<double>(after - before) / static_cast<double>(before);
    };
    const double resident = growth(tenth.resident, end.resident);
    if (resident > 10 && m_plan.sends >= enoughToJudge)
        fault(u"The memory has grown by more than a tenth."_s);
    report(u"memory since the first tenth: %1 % resident, %2 % of heap"_s.arg(resident, 0, 'f', 1)
               .arg(growth(tenth.heap, end.heap), 0, 'f', 1));
    report(u"%1 answers whole, %2 cut short; %3 conversations compared with their files"_s
               .arg(m_record.wholeAnswers())
               .arg(m_record.cutAnswers())
               .arg(m_retired + m_record.ids().size()));
    report(u"%1 pulls, of them %2 cancelled; %3 restarts; the engine killed %4 times"_s.arg(m_pulls)
               .arg(m_cancels)
               .arg(m_restarts)
               .arg(m_kills));
    for (auto sentence = m_sentences.cbegin(); sentence != m_sentences.cend(); ++sentence)
        report(u"  %1 times: %2"_s.arg(sentence.value()).arg(sentence.key()));
}

Task<> LongUse::until(QString what, std::function<bool()> condition)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition()) {
        if (waited.hasExpired(patience))
            throw SimpleError(what + u" did not come."_s);
        co_await sleepFor(glance);
    }
}

void LongUse::later(int most, const std::function<void()> &action)
{
    ++m_pendingActions;
    QTimer::singleShot(m_random.bounded(most + 1), m_window.get(), [this, action] {
        action();
        --m_pendingActions;
    });
}

void LongUse::fault(const QString &text)
{
    constexpr qsizetype enough = 20;
    if (text.isEmpty())
        return;
    if (m_faults.size() < enough)
        report(u"FAULT: "_s + text);
    m_faults.append(text);
}

void LongUse::report(const QString &text) const
{
    std::printf("%6.1f s  %s\n", static_cast<double>(m_clock.elapsed()) / 1000.0, qUtf8Printable(text));
    std::fflush(stdout);
}
