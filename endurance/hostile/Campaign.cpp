#include "Campaign.h"

#include "HostileBodies.h"
#include "HostileFiles.h"
#include "HostileText.h"
#include "WireFaults.h"
#include "platform/async/Sleep.h"
#include "ui/app/MainWindow.h"
#include "ui/chat/MessageInput.h"
#include "ui/models/ModelDetailsView.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPointer>

#include <algorithm>
#include <cstdio>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Kind = EngineManager::State::Kind;

namespace {

constexpr auto hangs = 60s;   // without a turn of the event loop
constexpr auto patience = 1s; // with an answer that may never end
constexpr auto glance = 2ms;
constexpr int tasksThatStay = 2; // the state's own loop, and the campaign
constexpr qsizetype pausesTold = 12;

bool matches(const QRegularExpression &pattern, const QString &title)
{
    return pattern.match(title).hasMatch();
}

double milliseconds(PauseWatch::Duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

} // namespace

Campaign::Campaign(const Plan &plan) : m_plan(plan), m_random(plan.seed), m_watch(hangs)
{
    m_sandbox.defaults().set(u"port"_s, m_engine.port());
    m_sandbox.defaults().set(u"manualEnginePath"_s, QString::fromUtf8(TARNWICK_DEMO_ENGINE));
    m_watch.begin(u"launch"_s);
    launch();
    m_kept.emplace(m_state->chats(), m_random);
    m_clock.start();
}

Campaign::~Campaign()
{
    m_window.reset();
    m_state.reset();
}

Task<> Campaign::run()
{
    co_await carryOut();
    m_watch.begin(u"the end"_s);
    judge();
    m_done = true;
    QCoreApplication::exit(succeeded() ? 0 : 1);
}

QList<HostileCase> Campaign::cases() const
{
    QList<HostileCase> all = HostileCase::all();
    all.removeIf([this](const HostileCase &what) {
        const QString title = what.title();
        return !matches(m_plan.only, title) ||
               (!m_plan.without.pattern().isEmpty() && matches(m_plan.without, title));
    });
    return all;
}

Task<> Campaign::carryOut()
{
    QList<HostileCase> all = cases();
    if (all.isEmpty())
        fault(u"There is no such case."_s);
    // Fonts are loaded when a character first needs them, and that takes what time it takes.
    for (const AppTab tab : {AppTab::models, AppTab::server, AppTab::chat}) {
        m_state->setTab(tab);
        co_await isQuiet();
    }
    const auto isOver = [this] { return m_clock.hasExpired(m_plan.duration.count()); };
    while (!isOver() && !all.isEmpty()) {
        std::shuffle(all.begin(), all.end(), m_random);
        for (qsizetype i = 0; i < all.size() && !isOver(); ++i) {
            const HostileCase what = all[i];
            m_watch.begin(what.title());
            co_await perform(what);
            ++m_performed;
            m_watch.begin(what.title());
            if (const auto pause = m_watch.pauses()[what.title()]; pause > m_plan.longestPause)
                fault(u"A pause of %1 ms in %2, behind %3"_s.arg(milliseconds(pause), 0, 'f', 1)
                          .arg(what.title(), m_before));
            m_before = what.title();
        }
        std::printf("%d cases of %d\n", m_performed, static_cast<int>(all.size()));
    }
    m_engine.reset();
    co_await restart();
    launch();
    checkWhatIsKept();
}

Task<> Campaign::perform(HostileCase what)
{
    if (what.subject == HostileCase::file) {
        co_await useFile(what.name);
        co_return;
    }
    if (what.subject == HostileCase::text) {
        co_await useText(what.where, what.name);
        co_return;
    }
    {
        const PauseWatch::Aside aside(m_watch);
        const QString endpoint = what.where;
        m_engine.set(endpoint, what.subject == HostileCase::wire
                                   ? WireFaults::answer(what.name, HostileBodies::sound(endpoint))
                                   : HostileBodies::answer(endpoint, what.name, m_random));
    }
    co_await askEngine(what.where);
    m_engine.reset();
    co_await restart();
}

Task<> Campaign::askEngine(QString endpoint)
{
    const QString name = u"model-%1"_s.arg(++m_models);
    if (endpoint == "version"_L1) {
        m_state->setTab(AppTab::server);
        m_state->setServer(false);
        m_state->setServer(true);
        const auto isSettled = [this] { return m_state->engine().state().kind != Kind::starting; };
        co_await until(isSettled, 3s);
    } else if (endpoint == "chat"_L1) {
        co_await chat();
    } else if (endpoint == "pull"_L1) {
        co_await pull();
    } else if (endpoint == "show"_L1) {
        m_state->loadCapabilities(name);
        co_await showDetails();
    } else {
        m_state->setTab(AppTab::models);
        const int before = m_engine.requests();
        if (endpoint == "generate"_L1)
            m_state->unload(name);
        else if (endpoint == "delete"_L1)
            m_state->deleteModel(name);
        const auto asked = [this, before] { return m_engine.requests() >= before + 2; };
        co_await until(asked, patience);
    }
    co_await isQuiet();
}

// The engine runs, and everything that went before has come to its end.
Task<> Campaign::restart()
{
    m_state->stopGenerating();
    const auto isSettled = [this] { return m_state->engine().state().kind != Kind::starting; };
    for (int attempt = 0; m_state->engine().state().kind != Kind::running; ++attempt) {
        if (attempt == 20) {
            fault(u"The engine is not found again: "_s + m_state->engine().state().message);
            co_return;
        }
        co_await until(isSettled, 5s);
        m_state->setServer(false);
        m_state->setServer(true);
        co_await until(isSettled, 5s);
    }
    m_state->setBanner(std::nullopt);
}

Task<> Campaign::chat()
{
    const QUuid id = m_state->chats().newConversation(u"sound:latest"_s).id;
    m_state->setTab(AppTab::chat);
    const QString question = u"a question"_s;
    m_state->send(question, id);
    const auto isAnswered = [this] { return !m_state->generatingID(); };
    co_await until(isAnswered, patience);
    co_await isQuiet();
    m_state->stopGenerating();
    co_await until(isAnswered, patience);
    const Conversation *const conversation = m_state->chats().find(id);
    if (!conversation || conversation->messages.isEmpty() ||
        conversation->messages.first().content != question)
        fault(u"What was asked is gone."_s);
    m_state->chats().deleteConversation(id);
}

Task<> Campaign::pull()
{
    const QString name = u"model-%1"_s.arg(m_models);
    m_state->setTab(AppTab::models);
    m_state->queue().enqueue(name, {});
    const auto hasEnded = [this, name] {
        const DownloadItem *const item = m_state->queue().item(name);
        return !item || item->phase.kind == DownloadItem::Phase::failed;
    };
    co_await until(hasEnded, patience);
    co_await isQuiet();
    m_state->queue().cancel(name);
    const auto isStill = [this, name] {
        const DownloadItem *const item = m_state->queue().item(name);
        return !item || item->phase.kind != DownloadItem::Phase::running;
    };
    co_await until(isStill, patience);
    m_state->queue().dismiss(name);
}

Task<> Campaign::showDetails()
{
    const QPointer<ModelDetailsView> view =
        new ModelDetailsView(m_state->engine().port(), u"model"_s, m_window.get());
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->open();
    const auto isLoaded = [] { return runningTasks() <= tasksThatStay; };
    co_await until(isLoaded, patience);
    co_await isQuiet();
    if (view)
        view->close();
}

Task<> Campaign::useFile(QString name)
{
    const QString folder = m_sandbox.path(u"chats"_s);
    {
        const PauseWatch::Aside aside(m_watch);
        m_window.reset();
        m_state.reset();
        HostileFiles::make(name, folder, m_random);
        // Before its window shows, a program pauses for nobody; it must not hang.
        launch();
        checkWhatIsKept();
    }
    co_await open();
    co_await restart();
    QList<QUuid> strangers;
    for (const Conversation &conversation : m_state->chats().conversations()) {
        if (!m_kept->contains(conversation.id))
            strangers.append(conversation.id);
    }
    m_state->chats().setSelectedID(strangers.isEmpty() ? m_kept->first() : strangers.first());
    co_await isQuiet();

    const auto isWritten = [this] { return m_state->chats().pendingSaves() == 0; };
    co_await until(isWritten, 30s);
    const PauseWatch::Aside aside(m_watch);
    m_window.reset();
    m_state.reset();
    const QStringList files =
        QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &file : files) {
        if (m_kept->containsFile(file))
            continue;
        const QString path = folder + u'/' + file;
        if (!QFile::remove(path) && !QDir().rmdir(path))
            fault(u"Left behind: "_s + file);
    }
    launch();
}

Task<> Campaign::useText(QString where, QString name)
{
    co_await open();
    std::optional<PauseWatch::Aside> aside(m_watch);
    const bool isShort = where == "rename"_L1 || where == "banner"_L1 || where == "pull"_L1;
    const QString text = HostileText::text(name, isShort ? 50'000 : 200'000);
    aside.reset();

    const QUuid id = m_state->chats().newConversation(u"sound:latest"_s).id;
    co_await isQuiet();
    if (where == "send"_L1) {
        m_state->send(text, id);
    } else if (where == "paste"_L1) {
        if (auto *const input = m_window->findChild<MessageInput *>()) {
            QGuiApplication::clipboard()->setText(text);
            input->paste();
            QGuiApplication::clipboard()->clear();
        }
    } else if (where == "search"_L1) {
        if (auto *const search = m_window->findChild<QLineEdit *>())
            search->setText(text);
    } else if (where == "rename"_L1) {
        m_state->chats().rename(id, text);
    } else if (where == "banner"_L1) {
        m_state->setBanner(text);
    } else if (where == "prompt"_L1) {
        m_state->setSettings({.systemPrompt = text}, u"sound:latest"_s);
        m_state->setSettings({}, u"sound:latest"_s);
    } else {
        m_state->setTab(AppTab::models);
        m_state->queue().enqueue(text, {});
    }
    const auto isAnswered = [this] { return !m_state->generatingID(); };
    co_await until(isAnswered, patience);
    co_await isQuiet();

    const QList<DownloadItem> items = m_state->queue().items();
    for (const DownloadItem &item : items) {
        m_state->queue().cancel(item.pullName);
        m_state->queue().dismiss(item.pullName);
    }
    if (auto *const search = m_window->findChild<QLineEdit *>())
        search->clear();
    m_state->chats().deleteConversation(id);
    m_state->setBanner(std::nullopt);
    co_await isQuiet();
}

Task<> Campaign::open()
{
    m_state->setTab(AppTab::chat);
    m_state->chats().setSelectedID(m_kept->first());
    co_await isQuiet();
}

// The lists have been asked for once more, and whatever changed has been laid out and painted.
Task<> Campaign::isQuiet()
{
    const int before = m_engine.requests();
    const auto asked = [this, before] { return m_engine.requests() >= before + 2; };
    co_await until(asked, 200ms);
    co_await sleepFor(10ms);
    m_window->repaint();
    co_await sleepFor(5ms);
}

Task<> Campaign::until(std::function<bool()> condition, std::chrono::milliseconds limit)
{
    QElapsedTimer waited;
    waited.start();
    while (!condition() && !waited.hasExpired(limit.count()))
        co_await sleepFor(glance);
}

void Campaign::launch()
{
    m_window.reset();
    m_state.emplace(AppState::Dependencies{
        .defaults = m_sandbox.defaults(),
        .desktop = m_desktop,
        .chatsFolder = m_sandbox.path(u"chats"_s),
        .engine = Sandbox::engineOptions(),
        .downloads = {.freeBytes = [](const QString &) { return std::optional<qint64>(); }},
        .statusPause = 10ms});
    m_window = std::make_unique<MainWindow>(*m_state, m_desktop, m_sandbox.defaults());
    m_window->show();
}

void Campaign::checkWhatIsKept()
{
    const QStringList faults = m_kept->compare(m_state->chats(), m_sandbox.path(u"chats"_s));
    for (const QString &text : faults)
        fault(text);
}

void Campaign::judge()
{
    const QMap<QString, PauseWatch::Duration> &pauses = m_watch.pauses();
    QStringList longest = pauses.keys();
    std::ranges::sort(longest, [&](const QString &a, const QString &b) { return pauses[a] > pauses[b]; });
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    std::printf("at most %ld MiB resident\n", used.ru_maxrss / 1024);
    std::printf("%d cases; the longest pauses of the main thread, in processor time:\n", m_performed);
    for (const QString &what : longest.first(std::min(longest.size(), pausesTold)))
        std::printf("%8.1f ms  %s\n", milliseconds(pauses[what]), qUtf8Printable(what));
}

void Campaign::fault(const QString &text)
{
    ++m_faults;
    std::printf("FAULT after %.1f s: %s\n", static_cast<double>(m_clock.elapsed()) / 1000.0,
                qUtf8Printable(text));
    std::fflush(stdout);
}
