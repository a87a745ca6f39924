#include "support/AppUnderTest.h"

#include "support/Waiting.h"

using namespace Qt::StringLiterals;

AppUnderTest::AppUnderTest(const QMap<QString, QString> &variables, std::chrono::milliseconds longWait)
    : demo(DemoEngine::quick(variables)), m_longWait(longWait)
{
    sandbox.chooseEngine(demo);
    launch();
}

void AppUnderTest::launch()
{
    m_state.reset();
    m_state.emplace(dependencies());
    const auto found = [this] { return m_state->engine().state().kind == EngineManager::State::running; };
    if (!QTest::qWaitFor(found, 30'000))
        qFatal("The engine was not found");
    waitFor(m_state->refresh());
}

AppState::Dependencies AppUnderTest::dependencies()
{
    return {.defaults = sandbox.defaults(),
            .desktop = desktop,
            .chatsFolder = sandbox.path(u"chats"_s),
            .engine = Sandbox::engineOptions(),
            .downloads = {.freeBytes = [](const QString &) { return std::optional<qint64>(); }},
            .statusPause = std::chrono::milliseconds(20),
            .unloadPatience = std::chrono::milliseconds(1000),
            .longWait = m_longWait};
}

void AppUnderTest::addModel(const QString &model) const
{
    demo.call("POST", u"/demo/models"_s, R"({"name":")" + model.toUtf8() + R"("})");
}

void AppUnderTest::loadModel(const QString &model) const
{
    const QByteArray named = R"("model":")" + model.toUtf8() + R"("})";
    demo.call("POST", u"/api/chat"_s, R"({"messages":[],"keep_alive":-1,)" + named);
}

bool AppUnderTest::settles(int milliseconds)
{
    return QTest::qWaitFor([] { return runningTasks() == 1; }, milliseconds);
}

QUuid AppUnderTest::newConversation(const QString &model)
{
    return m_state->chats().newConversation(model).id;
}

QStringList AppUnderTest::contents(const QUuid &id)
{
    QStringList list;
    if (const Conversation *const conversation = m_state->chats().find(id)) {
        for (const ChatMessage &message : conversation->messages)
            list.append(message.content);
    }
    return list;
}

bool AppUnderTest::replyEnds()
{
    return QTest::qWaitFor([this] { return !m_state->generatingID(); }, 10'000);
}

bool AppUnderTest::isAnswered(const QString &text, const QUuid &id)
{
    m_state->send(text, id);
    return replyEnds();
}

std::optional<Conversation> AppUnderTest::saved(const QUuid &id)
{
    ::waitFor(m_state->chats().savesWritten(std::chrono::seconds(10)));
    return ChatStore(sandbox.path(u"chats"_s)).conversation(id);
}
