#include "support/EngineUnderTest.h"
#include "support/Streams.h"

#include <QTest>

using namespace Qt::StringLiterals;
using State = EngineManager::State;

// What the program relies on without having a model. Runs on the stand-in engine or, where
// TARNWICK_TEST_ENGINE names a program, on that.
class EngineTest : public QObject
{
    Q_OBJECT

    std::optional<EngineUnderTest> m_engine;

    EngineManager &engine() { return *m_engine->get(); }
    OllamaClient client() { return OllamaClient(engine().port()); }
    void start()
    {
        ::waitFor(engine().start(), 120'000);
        QCOMPARE(engine().state(), (State{State::running, {}}));
    }

private Q_SLOTS:
    void init()
    {
        m_engine.emplace();
        const QString program = qEnvironmentVariable("TARNWICK_TEST_ENGINE");
        if (!program.isEmpty())
            m_engine->defaults().set(u"manualEnginePath"_s, program);
        m_engine->remake();
        start();
    }
    void cleanup() { m_engine.reset(); }

    void tellsAboutItself()
    {
        QVERIFY(!engine().engineVersion().isEmpty());
        QCOMPARE(::waitFor(client().version()), engine().engineVersion());
        QTRY_VERIFY(m_engine->log().contains("Listening on 127.0.0.1"_L1));
        QVERIFY(::waitFor(client().tags()).isEmpty());
        QVERIFY(::waitFor(client().ps()).isEmpty());
        engine().stop();
        start();
        QVERIFY(::waitFor(client().tags()).isEmpty());
    }

    void refusesWhatItDoesNotHave()
    {
        const QString name = u"no-such-model:1b"_s;
        const QString notFound = u"I couldn't find a model with that name in the Ollama library."_s;
        QCOMPARE(failureOf(client().show(name)), notFound);
        QCOMPARE(failureOf(client().deleteModel(name)), notFound);
        const ChatRequest hello{.model = name, .messages = {{u"user"_s, u"hello"_s}}};
        QCOMPARE(::waitFor(readChat(client().chat(hello))).failure, notFound);
        QCOMPARE(failureOf(readPull(client().pull(u"not a name"_s))), u"invalid model name"_s);
    }
};

QTEST_GUILESS_MAIN(EngineTest)
#include "tst_engine.moc"
