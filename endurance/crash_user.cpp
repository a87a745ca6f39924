// Uses the whole program without a pause, windows included, to be killed at any moment, and afterwards looks
// at what is left.
//     crash_user use PROFILE ENGINE PORT    says "up" before it begins, and "quitting" when it begins to
//     quit, which
//                                           it does by itself after a while
//     crash_user check PROFILE PORT         0 when nothing is lost and nothing is left over
#include "Journal.h"
#include "core/app/AppState.h"
#include "core/app/Shutdown.h"
#include "core/chat/ConversationFile.h"
#include "core/engine/AppPaths.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/instance/SingleInstance.h"
#include "support/FakeDesktop.h"
#include "support/NoLoginItem.h"
#include "support/ReleaseServer.h"
#include "support/TarArchive.h"
#include "support/Waiting.h"
#include "ui/app/MainWindow.h"
#include "ui/app/SettingsView.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto betweenActions = 8ms;
constexpr int actionsBeforeQuitting = 250;
constexpr qsizetype conversationsKept = 12;

void say(const char *word)
{
    std::puts(word);
    std::fflush(stdout);
}

QByteArray engineRelease(const QString &program)
{
    QFile file(program);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("There is no engine %s", qPrintable(program));
    return TarArchive().addFile("bin/ollama", file.readAll(), 0644).compressed();
}

class User : public QObject
{
public:
    User(AppState &state, Desktop &desktop, UserDefaults &defaults, const QString &profile)
        : m_state(state),
          m_desktop(desktop),
          m_defaults(defaults),
          m_window(state, desktop, defaults),
          m_journal(profile)
    {
        m_window.show();
        connect(&state, &AppState::generatingIDChanged, this,
                [this] { m_unsaved = m_unsaved || !m_state.generatingID(); });
        connect(&m_timer, &QTimer::timeout, this, &User::act);
        m_timer.start(betweenActions);
    }

private:
    void act()
    {
        note();
        if (++m_actions > actionsBeforeQuitting + m_random.bounded(actionsBeforeQuitting)) {
            m_timer.stop();
            launchQuit();
            return;
        }
        switch (m_random.bounded(12)) {
        case 0:
            begin();
            break;
        case 1:
            m_state.stopGenerating();
            break;
        case 2:
            remove();
            break;
        case 3:
            m_state.queue().enqueue(modelName(), {});
            break;
        case 4:
            m_state.queue().cancel(modelName());
            break;
        case 5:
            m_state.deleteModel(modelName());
            break;
        case 6:
            if (m_random.bounded(4) == 0)
                m_state.engine().startInstall();
            break;
        case 7:
            if (m_random.bounded(6) == 0)
                m_state.setServer(m_random.bounded(3) > 0);
            break;
        case 8:
            m_state.setSettings({.systemPrompt = QString(m_random.bounded(5000), u'p')}, modelName());
            break;
        case 9:
            openSettings();
            break;
        case 10:
            m_state.setTab(static_cast<AppTab>(m_random.bounded(3)));
            break;
        default:
            talk();
        }
    }

    // What the disk is known to hold must be there from now on.
    void note()
    {
        if (!m_unsaved || m_state.generatingID() || m_state.chats().pendingSaves() > 0)
            return;
        m_unsaved = false;
        for (const Conversation &conversation : m_state.chats().conversations())
            m_journal.add(conversation.id, conversation.messages.size());
    }

    void begin()
    {
        if (m_state.chats().conversations().size() < conversationsKept)
            m_state.openChat(m_random.bounded(2) == 0 ? u"phi3.5"_s : u"qwen3:4b"_s);
    }

    void remove()
    {
        const QList<Conversation> &all = m_state.chats().conversations();
        if (all.size() < conversationsKept / 2)
            return;
        const QUuid id = all[m_random.bounded(all.size())].id;
        m_journal.add(id, Journal::gone);
        m_state.chats().deleteConversation(id);
    }

    void talk()
    {
        const QList<Conversation> &all = m_state.chats().conversations();
        if (all.isEmpty())
            return begin();
        const QUuid id = all[m_random.bounded(all.size())].id;
        m_state.chats().setSelectedID(id);
        m_state.send(u"echo "_s + u"word "_s.repeated(m_random.bounded(1, 3000)).trimmed(), id);
    }

    void openSettings()
    {
        delete m_settings;
        m_settings = new SettingsView(m_state, m_desktop, m_defaults, m_loginItem, &m_window);
        m_settings->show();
    }

    void launchQuit()
    {
        say("quitting");
        m_window.hide();
        quit(&m_state);
    }

    static Task<> quit(AppState *state)
    {
        co_await shutDown(*state);
        QCoreApplication::exit();
    }

    QString modelName() { return u"model-%1"_s.arg(m_random.bounded(6)); }

    AppState &m_state;
    Desktop &m_desktop;
    UserDefaults &m_defaults;
    NoLoginItem m_loginItem;
    MainWindow m_window;
    QPointer<SettingsView> m_settings;
    QRandomGenerator m_random{QRandomGenerator::securelySeeded()};
    QTimer m_timer;
    Journal m_journal;
    int m_actions = 0;
    bool m_unsaved = true;
};

int use(const QString &profile, const QString &engine, int port)
{
    qputenv("DEMO_ENGINE_READY_MS", "20");
    qputenv("DEMO_ENGINE_LOAD_MS", "5");
    qputenv("DEMO_ENGINE_PULL_MS", "200");
    qputenv("DEMO_ENGINE_CHUNK_MS", "1");
    qputenv("DEMO_ENGINE_RUNNER", "2");
    qputenv("DEMO_ENGINE_INSTALLED", "phi3.5,qwen3:4b");
    ReleaseServer releases;
    releases.publish(engineRelease(engine));

    say("up");
    SingleInstance instance(profile);
    if (instance.claim().outcome != SingleInstance::Claim::Outcome::first) {
        std::fprintf(stderr, "crash_user: the profile is taken\n");
        return 3;
    }
    UserDefaults defaults(profile + "/settings.ini"_L1);
    defaults.set(u"guideDone"_s, true);
    defaults.set(u"port"_s, port);
    if (defaults.string(u"ownEnginePath"_s).value_or(QString()).isEmpty() ||
        !QFile::exists(*defaults.string(u"ownEnginePath"_s)))
        defaults.set(u"manualEnginePath"_s, engine);
    FakeDesktop desktop;
    EngineOptions options;
    options.installPlaces.clear();
    options.pause = 20ms;
    options.installer = releases.options();
    AppState &state = AppState::makeShared({.defaults = defaults,
                                            .desktop = desktop,
                                            .chatsFolder = AppPaths::chatsDir(),
                                            .engine = options,
                                            .statusPause = 50ms});
    int status = 0;
    {
        const User user(state, desktop, defaults, profile);
        status = QApplication::exec();
    }
    AppState::dropShared();
    return status;
}

// What is wrong with one conversation's file; empty when nothing is.
QString wrongWith(const QString &name, const ChatStore &store)
{
    QFile file(AppPaths::chatsDir() + u'/' + name);
    const auto conversation =
        file.open(QIODevice::ReadOnly) ? ConversationFile::decode(file.readAll()) : std::nullopt;
    if (!conversation || name != ConversationFile::name(conversation->id) || !store.find(conversation->id))
        return u"should not be there or is not whole"_s;
    QString asked;
    for (const ChatMessage &message : conversation->messages) {
        if (message.role == "user"_L1)
            asked = message.content;
        else if (!asked.startsWith("echo "_L1 + message.content))
            return u"holds an answer to something else"_s;
    }
    return {};
}

int check(const QString &profile, int port)
{
    QStringList faults;
    const ChatStore store(AppPaths::chatsDir());
    static constexpr auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QStringList names = QDir(AppPaths::chatsDir()).entryList(everything);
    for (const QString &name : names) {
        if (const QString wrong = wrongWith(name, store); !wrong.isEmpty())
            faults << name + u' ' + wrong;
    }
    const QHash<QUuid, qsizetype> known = Journal(profile).last();
    for (auto entry = known.begin(); entry != known.end(); ++entry) {
        const Conversation *const conversation = store.find(entry.key());
        if (entry.value() != Journal::gone &&
            (!conversation || conversation->messages.size() < entry.value()))
            faults << u"%1 has lost what was saved of it"_s.arg(entry.key().toString());
    }

    UserDefaults defaults(profile + "/settings.ini"_L1);
    const auto settings = defaults.data(u"modelSettings"_s);
    if (QFile::exists(profile + "/settings.ini"_L1) &&
        (defaults.integer(u"port"_s) != port || (settings && !decodeModelSettings(*settings))))
        faults << u"the settings are lost"_s;

    {
        const EngineInstaller next({}, nullptr); // which removes what an installation left
        const auto isTidy = [] { return QDir(AppPaths::tempDir()).isEmpty(everything); };
        if (!QTest::qWaitFor(isTidy, 30'000))
            faults << u"an installation has left something"_s;
    }
    const QString installed = AppPaths::engineDir() + "/bin/ollama"_L1;
    QProcess engine;
    engine.start(installed, {u"--version"_s});
    if (QFile::exists(AppPaths::engineDir()) && (!engine.waitForFinished() || engine.exitCode() != 0))
        faults << u"half an engine is installed"_s;

    for (const QString &fault : std::as_const(faults))
        std::fprintf(stderr, "crash_user: %s\n", qPrintable(fault));
    std::printf("%lld conversations, %s engine installed, %lld wrong\n",
                static_cast<long long>(store.conversations().size()), QFile::exists(installed) ? "an" : "no",
                static_cast<long long>(faults.size()));
    return faults.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 2)
        AppPaths::setApplicationDir(arguments[2] + "/Tarnwick"_L1);
    if (arguments.size() == 5 && arguments[1] == "use"_L1)
        return use(arguments[2], arguments[3], arguments[4].toInt());
    if (arguments.size() == 4 && arguments[1] == "check"_L1)
        return check(arguments[2], arguments[3].toInt());
    std::fprintf(stderr, "usage: crash_user use PROFILE ENGINE PORT | check PROFILE PORT\n");
    return 2;
}
