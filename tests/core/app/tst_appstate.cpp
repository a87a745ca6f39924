#include "core/app/ChatGeneration.h"
#include "core/chat/ExportFileName.h"
#include "support/AppUnderTest.h"
#include "support/AppWithItsEngine.h"
#include "support/Table.h"
#include "support/Waiting.h"

#include <QFile>
#include <QJsonDocument>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using State = EngineManager::State;

namespace {

const QMap<QString, QString> withModels{{u"DEMO_ENGINE_INSTALLED"_s, u"qwen3:4b,phi3.5"_s}};
const QString phi = u"phi3.5"_s;
const QString qwen = u"qwen3:4b"_s;

} // namespace

class AppStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void launchFollowsTheWish()
    {
        AppUnderTest app(withModels);
        QVERIFY(!app.sandbox.defaults().string(u"serverWanted"_s));
        app.loadModel(phi);
        QTRY_VERIFY(app->isLoaded(phi));
        app->setServer(false);
        QVERIFY(app->loaded().isEmpty());
        app.drop();
        AppState next(app.dependencies());
        const QSignalSpy states(&next.engine(), &EngineManager::stateChanged);
        // Long enough for the loop to have passed once.
        QVERIFY(AppUnderTest::settles());
        ::waitFor(next.refresh());
        QVERIFY(states.isEmpty() && next.installed().isEmpty());
        next.setServer(true);
        QTRY_VERIFY(next.isLoaded(phi));
        QVERIFY(app.sandbox.defaults().boolean(u"serverWanted"_s));
    }

    // However it came up, and long before the next pass over the lists.
    void anEngineThatComesUpIsAskedForItsModels()
    {
        qputenv("DEMO_ENGINE_INSTALLED", "phi3.5");
        const auto undo = qScopeGuard([] { qunsetenv("DEMO_ENGINE_INSTALLED"); });
        AppWithItsEngine app;
        app.dependencies.statusPause = std::chrono::hours(1);
        app.sandbox.defaults().set(u"serverWanted"_s, false);
        app.launch();
        ::waitFor(app->engine().useAnotherPort());
        QTRY_VERIFY(app->isInstalled(phi));
    }

    void aServerThatGoesAwayIsMissed()
    {
        AppUnderTest app(withModels);
        app.demo.setFaults(u"version:close-early"_s);
        QTRY_COMPARE(app->engine().state().kind, State::failed);
    }

    void failedPassesKeepTheLists()
    {
        AppUnderTest app(withModels);
        const QSignalSpy installed(&*app, &AppState::installedChanged);
        app.demo.setFaults(u"tags:status=500"_s);
        app.loadModel(phi);
        QTRY_VERIFY(app->isLoaded(phi));
        QVERIFY(installed.isEmpty());
        app.demo.setFaults(u"ps:close-early"_s);
        app.demo.call("DELETE", u"/api/delete"_s, R"({"model":"qwen3:4b"})");
        QTRY_COMPARE(app->installed().size(), 1);
        QVERIFY(app->isLoaded(phi));
        QCOMPARE(app->banner(), std::nullopt);
        app->engine().stop();
        QTRY_VERIFY(app->loaded().isEmpty());
        QVERIFY(app->isInstalled(u"  PHI3.5:latest "_s) && !app->isInstalled(qwen));
    }

    void capabilitiesAreAskedOnce()
    {
        AppUnderTest app(withModels);
        app.demo.setFaults(u"show:status=500"_s);
        app->loadCapabilities(qwen);
        QVERIFY(AppUnderTest::settles() && app->capabilities().isEmpty());
        app.demo.setFaults({});
        app->loadCapabilities(qwen);
        app->loadCapabilities(qwen);
        QTRY_VERIFY(app->capabilities().value(qwen).contains(u"thinking"_s));
        app->loadCapabilities(qwen);
        QVERIFY(AppUnderTest::settles());
        QCOMPARE(app.demo.requests(u"/api/show"_s).size(), 2);
    }

    void destroyedWithRequestsUnderWay()
    {
        AppUnderTest app(withModels);
        app.demo.setFaults(u"stall-early"_s);
        app->send(u"Hello"_s, app.newConversation());
        app->deleteModel(phi);
        app->loadCapabilities(phi);
        app->queue().enqueue(u"qwen3:0.6b"_s, {});
        for (const char *request : {"chat", "delete", "show", "pull", "tags"})
            QTRY_VERIFY(!app.demo.requests(u"/api/"_s + QLatin1StringView(request)).isEmpty());
        app.drop();
        QTRY_COMPARE(runningTasks(), 0);
    }

    void newChats()
    {
        AppUnderTest app(withModels);
        app->openChat(u"gone"_s);
        QCOMPARE(app->defaultModel(), app->installed().first().name);
        app->openChat(u" PHI3.5"_s);
        QCOMPARE(app->chats().conversations().size(), 1);
        QCOMPARE(app.saved(*app->chats().selectedID())->model, u" PHI3.5"_s);
        app->newChat();
        QCOMPARE(app->chats().conversations().first().model, u" PHI3.5"_s);
        app->send(u"Hello"_s, *app->chats().selectedID());
        app->openChat(u"qwen3:4b"_s);
        QCOMPARE(app->chats().conversations().size(), 3);
    }

    void replyIsStreamedAndSaved()
    {
        AppUnderTest app(withModels);
        app->setSettings({.systemPrompt = u" Be brief. "_s, .temperature = 0.25, .keepAliveMinutes = -1},
                         u"qwen3:4b"_s);
        app->loadCapabilities(u"qwen3:4b"_s);
        QTRY_VERIFY(app->capabilities().contains(u"qwen3:4b"_s));
        const QUuid id = app.newConversation(u"qwen3:4b"_s);
        app.newConversation();
        QVERIFY(!app->send(u" \n "_s, id));
        QVERIFY(app->send(u"  echo One two, three four.\n"_s, id));
        QCOMPARE(app->generatingID(), id);
        QCOMPARE(app.contents(id).size(), 2);
        QVERIFY(app.replyEnds());

        const Conversation conversation = *app.saved(id);
        QCOMPARE(conversation.title, u"echo One two, three four."_s);
        const ChatMessage reply = conversation.messages.last();
        QCOMPARE(reply.role + u": "_s + reply.content, u"assistant: One two, three four."_s);
        QVERIFY(!reply.thinking.isEmpty() && reply.tokensPerSecond.value_or(0) > 0);
        QCOMPARE(app->chats().conversations().first().id, id);
        const QByteArray expected =
            R"({"keep_alive":-1,"messages":[{"content":" Be brief. ","role":"system"},)"
            R"({"content":"echo One two, three four.","role":"user"}],"model":"qwen3:4b",)"
            R"("options":{"num_ctx":4096,"temperature":0.25,"top_p":0.9},)"
            R"("stream":true,"think":true})";
        const QString sent = app.demo.requests(u"/api/chat"_s).last()["body"_L1].toString();
        QCOMPARE(QJsonDocument::fromJson(sent.toUtf8()), QJsonDocument::fromJson(expected));

        QVERIFY(app.isAnswered(u"Again"_s, id));
        QCOMPARE(app->chats().find(id)->title, conversation.title);
        QCOMPARE(app->takeLastUserMessage(id), u"Again"_s);
        QCOMPARE(app.saved(id)->messages.size(), 2);
    }

    void needsAModelAndAnEngine()
    {
        AppUnderTest app(withModels);
        const auto regenerate = [&app](const QUuid &id, const QString &model) {
            app->chats().mutate(id, [&model](Conversation &conversation) { conversation.model = model; });
            app->regenerate(id);
        };
        const QUuid id = app.newConversation({});
        QCOMPARE(app->takeLastUserMessage(id), std::nullopt);
        QVERIFY(!app->send(u"echo Hi"_s, id) && !app->send(u"echo Hi"_s, QUuid::createUuid()));
        QCOMPARE(app->banner(), u"Pick an installed model at the top of the chat first."_s);
        app->chats().mutate(id, [](Conversation &conversation) {
            conversation.messages = {ChatMessage::make(u"assistant"_s, u"kept"_s)};
        });
        app->regenerate(id);
        QCOMPARE(app.contents(id), QStringList(u"kept"_s));
        regenerate(id, u"gone"_s);
        QVERIFY(app.replyEnds() && app.contents(id).isEmpty());
        QVERIFY(app->send(u"echo Hi"_s, id) && app.replyEnds());
        QCOMPARE(app->banner(), u"I couldn't find a model with that name in the Ollama library."_s);
        QCOMPARE(app.contents(id), QStringList(u"echo Hi"_s));

        // A start that is under way is waited for, and so is one of its own.
        app->setServer(false);
        app.demo.freeze();
        app->setServer(true);
        regenerate(id, u"phi3.5"_s);
        QVERIFY(app.replyEnds());
        QCOMPARE(app->banner(), u"The local engine isn't running. Open the Server tab to see why."_s);
        app.demo.thaw();
        app->setServer(false);
        app->regenerate(id);
        QVERIFY(app.replyEnds());
        QCOMPARE(app.contents(id), QStringList({u"echo Hi"_s, u"Hi"_s}));
    }

    void oneReplyAtATime()
    {
        AppUnderTest app(withModels);
        app.setPace(R"({"loadMs":60000})");
        const QUuid other = app.newConversation();
        const QUuid id = app.newConversation();
        app->send(u"Hello"_s, id);
        QVERIFY(!app->send(u"Hello"_s, other));
        app->regenerate(id);
        QCOMPARE(app->takeLastUserMessage(id), std::nullopt);
        QVERIFY(app.contents(other).isEmpty());
        QTRY_COMPARE(app.demo.requests(u"/api/chat"_s).size(), 1);
        app->stopGenerating();
        QVERIFY(app.replyEnds());
        QCOMPARE(app->banner(), std::nullopt);
        QCOMPARE(app.saved(id)->messages.size(), 1);
        QTRY_COMPARE(app.demo.requests(u"/api/chat"_s)[0]["state"_L1].toString(), u"cut"_s);

        // Nor does one that is stopped wait for an engine that is slow to start.
        app->setServer(false);
        app.demo.setFaults(u"version:stall-early"_s);
        app->regenerate(id);
        QTRY_COMPARE(app->engine().state().kind, State::starting);
        app->stopGenerating();
        QVERIFY(app.replyEnds());
        QCOMPARE(app->engine().state().kind, State::starting);
        QCOMPARE(app.contents(id), QStringList(u"Hello"_s));
    }

    void endsMidway_data()
    {
        const auto row = table<bool>("isSaved");
        row("stopped", true);
        row("deleted", false);
        row("quitting", true);
    }
    void endsMidway()
    {
        QFETCH(const bool, isSaved);
        const QByteArray how = QTest::currentDataTag();
        AppUnderTest app(withModels);
        app.setPace(R"({"chunkMs":20})");
        const QUuid id = app.newConversation();
        app->send(u"repeat 60 again "_s, id);
        QTRY_VERIFY(!app.contents(id).last().isEmpty());
        if (how == "stopped")
            app->stopGenerating();
        else if (how == "deleted")
            app->chats().deleteConversation(id);
        else
            beginQuitting();
        const bool ends = app.replyEnds();
        QVERIFY(how != "quitting" || (!app->send(u"late"_s, id) && !app->takeLastUserMessage(id)));
        resumeAfterQuitting();
        QVERIFY(ends);
        QCOMPARE(app->banner(), std::nullopt);
        const auto saved = app.saved(id);
        QCOMPARE(saved.has_value(), isSaved);
        QVERIFY(!saved || saved->messages.value(1).content.startsWith("again "_L1));
    }

    void titleCountsPerceivedCharacters()
    {
        const QString characters =
            u"x e\u0301\u0323 𝛼 👨‍👩‍👧‍👦 👍🏽 🇩🇪 🏴󠁧󠁢󠁳󠁣󠁴󠁿 1️⃣ \u1112\u1161\u11AB"_s;
        for (const QString &character : characters.split(u' '))
            QCOMPARE(ChatGeneration::titleFrom(character.repeated(41)), character.repeated(40));
    }

    void requestLeavesReasoningOut()
    {
        Conversation conversation = Conversation::make(u"m"_s);
        conversation.messages = {ChatMessage::make(u"user"_s, u"<think>mine</think>"_s),
                                 ChatMessage::make(u"assistant"_s, u"<think>only"_s),
                                 ChatMessage::make(u"assistant"_s, u"<think>x</think>Hi"_s),
                                 ChatMessage::make(u"user"_s), ChatMessage::make(u"tool"_s, u"<think>y"_s)};
        conversation.messages[2].thinking = u"apart"_s;
        const QList<ChatRequestMessage> expected{{u"user"_s, u"<think>mine</think>"_s},
                                                 {u"assistant"_s, u"Hi"_s},
                                                 {u"user"_s, {}},
                                                 {u"tool"_s, {}}};
        QCOMPARE(ChatGeneration::requestMessages(conversation, {.systemPrompt = u" \n\t"_s}), expected);
    }

    void requestDependsOnTheModel()
    {
        Conversation conversation = Conversation::make(u"m"_s);
        conversation.think = false;
        const QStringList able{u"completion"_s, u"thinking"_s};
        QCOMPARE(ChatGeneration::request(conversation, {}, {u"completion"_s}).think, std::nullopt);
        QCOMPARE(ChatGeneration::request(conversation, {}, able).think, false);
        QCOMPARE(ChatGeneration::keepAliveValue(1), QJsonValue(u"1m"_s));
        QCOMPARE(ChatGeneration::keepAliveValue(0), QJsonValue(0));
    }

    void speedNeedsCounters()
    {
        const auto speed = [](bool done, qint64 count, qint64 duration) {
            ChatMessage reply = ChatMessage::make(u"assistant"_s);
            ChatGeneration::apply({{}, {}, done, count, duration}, reply);
            return reply.tokensPerSecond;
        };
        QCOMPARE(speed(true, 120, 4'000'000'000), 30.0);
        QCOMPARE(speed(false, 120, 4'000'000'000), std::nullopt);
        QCOMPARE(speed(true, 0, 1), std::nullopt);
        QCOMPARE(speed(true, 1, 0), std::nullopt);
    }

    void exportNames_data()
    {
        const auto row = table<QString, QString>("title", "name");
        row("slash", u"a/b"_s, u"a-b.md"_s);
        row("several lines", u"a\r\nb\u2028c\td\n"_s, u"a  b c d.md"_s);
        row("control", u"a\u0000\u001b\u009bb"_s, u"ab.md"_s);
        row("direction", u"a\u202etxt\u2066.\u200f"_s, u"atxt..md"_s);
        row("hidden", u" -/.- a.-"_s, u"a.-.md"_s);
        row("nothing left", u"../.."_s, u"Chat.md"_s);
        row("long", u"x"_s.repeated(101), u"x"_s.repeated(100) + u".md"_s);
        row("within a character", u"x"_s + u"👨‍👩‍👧"_s.repeated(9),
            u"x"_s + u"👨‍👩‍👧"_s.repeated(5) + u".md"_s);
        row("one endless character", u"𝛼"_s + u"\u0301"_s.repeated(90),
            u"𝛼"_s + u"\u0301"_s.repeated(48) + u".md"_s);
    }
    void exportNames()
    {
        QFETCH(const QString, title);
        QTEST(exportFileName(title), "name");
    }

    void exportsUnderTheTitle()
    {
        AppUnderTest app;
        const QUuid id = app.newConversation();
        app->chats().rename(id, u"../b/ü"_s);
        app.desktop.answer = app.sandbox.path(u"missing/chosen.md"_s);
        app->exportMarkdown(id);
        QTRY_VERIFY(app->banner().value_or(QString()).startsWith("Could not save the file: "_L1));
        app.desktop.answer = app.sandbox.path(u"chosen.md"_s);
        app->exportMarkdown(id);
        QTRY_VERIFY(QFile::exists(*app.desktop.answer));
        QCOMPARE(app.desktop.asked.last(), u"b-ü.md"_s);
    }

    void settingsAreStored()
    {
        AppUnderTest app;
        const ModelSettings settings{.systemPrompt = u"Be brief."_s, .topP = 0.5};
        app->setSettings(settings, u"m"_s);
        app.launch();
        QCOMPARE(app->modelSettings(), ModelSettingsMap({{u"m"_s, settings}}));
        const QByteArray damaged = "{\"m\":{}}";
        app.sandbox.defaults().set(u"modelSettings"_s, damaged);
        app.launch();
        QVERIFY(app->modelSettings().isEmpty());
        QCOMPARE(app.sandbox.defaults().data(u"modelSettings"_s), damaged);
    }
};

QTEST_GUILESS_MAIN(AppStateTest)
#include "tst_appstate.moc"
