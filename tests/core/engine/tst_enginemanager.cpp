#include "core/api/OllamaClient.h"
#include "core/engine/AppPaths.h"
#include "core/engine/EngineNote.h"
#include "core/engine/EngineRules.h"
#include "platform/process/ProcessMark.h"
#include "support/DemoEngine.h"
#include "support/EngineUnderTest.h"
#include "support/InstallerUnderTest.h"
#include "support/RunningChild.h"
#include "support/Table.h"
#include "support/Waiting.h"

#include <QSignalSpy>
#include <QTcpServer>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using State = EngineManager::State;

namespace {

const QString demoProgram = QString::fromUtf8(TARNWICK_DEMO_ENGINE);
const QString crashed = u"The engine stopped unexpectedly. See the details below."_s;
const QString noAnswer = u"The engine did not answer in time. See the details below."_s;
const QString taken = u"Port %1 is already used by another program."_s;

} // namespace

class EngineManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsAndStops()
    {
        EngineUnderTest engine;
        const Task<> first = engine->start();
        engine.start(); // which ends with the first
        QCOMPARE(engine.states, (QList<State>{{State::starting, {}}, {State::running, {}}}));
        QCOMPARE(engine->engineVersion(), u"0.32.15"_s);
        engine.start();
        engine->stop();
        QTRY_VERIFY(hasNoChildren());
        QCOMPARE(engine.states.mid(2), (QList<State>{{State::stopped, {}}}));
        // An end that nobody asked for is a failure, though the engine ends with status 0.
        engine.start();
        ChildProcessHolder::shared().terminate();
        QTRY_COMPARE(engine->state(), (State{State::failed, crashed}));
        engine.start();
        QCOMPARE(engine.kind(), State::running);
    }

    void launches_data()
    {
        const auto row = table<QString, QString>("script", "failure");
        const auto faulty = [](const QString &faults) {
            return u"export DEMO_ENGINE_FAULT=%1; exec demo \"$@\""_s.arg(faults);
        };
        row("loses the port", u"echo ADDRESS already In Use >&2; exit 1"_s, taken);
        row("is silent", u"exec sleep 60"_s, noAnswer);
        row("never tells its version", faulty(u"version:endless-error=500"_s), noAnswer);
        row("is killed", faulty(u"kill=0"_s), crashed);
        row("not a program", {}, u"The engine could not be started: Exec format error"_s);
        row("says much", faulty(u"slow-start=300,log-lines=1000,log-huge,log-invalid-utf8"_s), {});
    }
    void launches()
    {
        QFETCH(const QString, script);
        QFETCH(QString, failure);
        EngineOptions options = Sandbox::engineOptions();
        options.attempts = failure == noAnswer ? 3 : options.attempts;
        EngineUnderTest engine(script + u' ', options);
        if (script.isEmpty())
            QVERIFY(QFile::resize(engine->enginePath(), 1));
        engine.start();
        QCOMPARE(engine->portConflict(), failure == taken);
        failure.replace("%1"_L1, QString::number(engine->port()));
        QCOMPARE(engine->state(), (State{failure.isEmpty() ? State::running : State::failed, failure}));
        QVERIFY(engine->logLines().size() <= 80);
        QTRY_COMPARE(hasNoChildren(), engine.kind() == State::failed);
    }

    void whatTheEngineIsTold()
    {
        EngineUnderTest engine(u"echo \"$1\"; echo \"$OLLAMA_HOST\"; echo \"$OLLAMA_MODELS\"; "
                               "test -d \"$OLLAMA_MODELS\" && echo \"$HOME\""_s);
        const int port = engine->port();
        engine.defaults().set(u"port"_s, 0);
        engine.remake();
        QCOMPARE(engine->port(), 11435);
        engine->setPort(port);
        engine->setShareOnNetwork(true);
        engine.start();
        const QString host = u"0.0.0.0:%1"_s.arg(port);
        QCOMPARE(engine->logLines(),
                 (QStringList{u"serve"_s, host, AppPaths::modelsDir(), qEnvironmentVariable("HOME")}));
        engine.remake();
        QVERIFY(engine->port() == port && engine->shareOnNetwork());
    }

    void anotherProgramOnThePort()
    {
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::LocalHost));
        connect(&other, &QTcpServer::newConnection, this,
                [&other] { other.nextPendingConnection()->close(); });
        EngineUnderTest engine;
        engine->setPort(other.serverPort());
        engine.start();
        QCOMPARE(engine->state(), (State{State::failed, taken.arg(other.serverPort())}));
        QVERIFY(engine->portConflict() && hasNoChildren());
        ::waitFor(engine->useAnotherPort());
        QCOMPARE(engine.kind(), State::running);
        QVERIFY(!engine->portConflict() && engine->port() > other.serverPort());
        engine->setPort(65'535);
        ::waitFor(engine->useAnotherPort());
        QCOMPARE(engine->state().message,
                 u"I could not find a free port. Close some programs and try again."_s);
    }

    void stoppingAStart()
    {
        EngineUnderTest engine;
        auto first = engine.startSlowly();
        engine->stop();
        QCOMPARE(engine.kind(), State::stopped);
        // Two more, the first of which is given up while it waits for the old engine.
        auto second = engine->start();
        engine->stop();
        engine.start();
        ::waitFor(std::move(first));
        ::waitFor(std::move(second));
        QCOMPARE(engine.kind(), State::running);
        engine->stop();
        QTRY_VERIFY(hasNoChildren());
        QCOMPARE(engine.states.size(), 7);
        auto quitting = engine.startSlowly();
        beginQuitting();
        ::waitFor(std::move(quitting));
        engine->stop();
        engine.start();
        resumeAfterQuitting();
        QCOMPARE(engine.kind(), State::stopped);
        auto destroyed = engine.startSlowly();
        engine.drop();
        ::waitFor(std::move(destroyed));
    }

    void aDyingEngineIsNotAdopted()
    {
        qputenv("DEMO_ENGINE_FAULT", "stop-delay=400");
        EngineUnderTest engine(EngineUnderTest::knownById());
        engine.start();
        ::waitFor(OllamaClient(engine->port()).tags()); // leaves a connection open
        const int first = engine.engineId();
        engine->stop();
        engine.start();
        QCOMPARE(engine->state(), (State{State::running, {}}));
        QVERIFY(engine.engineId() != first);
    }

    // It is told to stop and does not listen, or is left by a program that was killed.
    void aDeafEngineIsEndedForGood_data()
    {
        const auto row = table<bool>("isLeft");
        row("stopped", false);
        row("left behind", true);
    }
    void aDeafEngineIsEndedForGood()
    {
        QFETCH(const bool, isLeft);
        qputenv("DEMO_ENGINE_FAULT", "ignore-term");
        EngineOptions options = Sandbox::engineOptions();
        options.endLimit = 50ms;
        EngineUnderTest engine(EngineUnderTest::knownById(), options);
        engine.start();
        const int deaf = engine.engineId();
        engine->stop();
        if (isLeft)
            engine.remake(options);
        qunsetenv("DEMO_ENGINE_FAULT");
        const QSignalSpy told(engine.get(), &EngineManager::previousIsEndingChanged);
        engine.start();
        QCOMPARE(engine->state(), (State{State::running, {}}));
        QVERIFY(engine.engineId() != deaf && !engine->adoptedServer());
        QVERIFY(told.size() == 2 && !engine->previousIsEnding());
    }

    void aNoteThatDoesNotFitHitsNobody()
    {
        const Sandbox sandbox;
        const RunningChild noted(u"while :; do sleep 1; done"_s);
        const pid_t id = noted.process()->programId();
        EngineNote().write(id);
        QFile file(AppPaths::applicationDir() + "/running-engine.json"_L1);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QByteArray fitting = file.readAll();
        const QByteArray birth = ProcessMark::of(id)->birth;
        const QByteArray number = QByteArray::number(id);
        const QByteArrayList unfitting{QByteArray(fitting).replace(number, QByteArray::number(::getpid())),
                                       QByteArray(fitting).replace(birth, birth + '0'),
                                       QByteArray(fitting).replace(birth, ""),
                                       QByteArray(fitting).replace("bin/", "bin/not-"),
                                       fitting.first(fitting.size() / 2),
                                       {}};
        for (const QByteArray &note : unfitting) {
            QVERIFY(note != fitting && file.resize(0) && file.seek(0) && file.write(note) >= 0 &&
                    file.flush());
            ::waitFor(EngineNote::endNoted(10ms, {}));
            QVERIFY2(noted.process()->isRunning(), note.constData());
        }
        QVERIFY(file.seek(0) && file.write(fitting) > 0 && file.flush());
        ::waitFor(EngineNote::endNoted(10ms, {}));
        QTRY_VERIFY(noted.ended());
    }

    void aServerOfAnotherProgramIsWatched()
    {
        EngineUnderTest engine;
        std::optional<DemoEngine> other(std::in_place, DemoEngine::quick());
        engine.sandbox.chooseEngine(*other);
        engine.remake();
        engine.start();
        QVERIFY(engine->adoptedServer() && !engine->adoptedServer()->isAnotherUsers());
        for (const char *const faults : {"version:status=500", "", "version:close-early"}) {
            other->setFaults(QString::fromLatin1(faults));
            ::waitFor(engine->watchAdopted());
            QCOMPARE(engine.kind(), State::running);
        }
        other.reset();
        ::waitFor(engine->watchAdopted());
        QCOMPARE(engine->state(), (State{State::failed, crashed}));
        engine.start();
        QVERIFY(engine.kind() == State::running && !engine->adoptedServer());
    }

    void nothingToStart()
    {
        FakeDesktop desktop;
        EngineOptions options = Sandbox::engineOptions();
        options.desktop = &desktop;
        EngineUnderTest engine;
        engine.defaults().remove(u"manualEnginePath"_s);
        engine.remake(options);
        engine.start();
        engine->stop();
        QVERIFY(engine.kind() == State::notInstalled && engine.states.isEmpty());
        desktop.answer = demoProgram;
        engine->chooseManually();
        QTRY_COMPARE_WITH_TIMEOUT(engine.states, (QList<State>{{State::stopped, {}}}), 30'000);
        QCOMPARE(engine.defaults().string(u"manualEnginePath"_s), demoProgram);

        // What is not executable is passed over, and an engine that was put there meanwhile found.
        engine.defaults().set(u"manualEnginePath"_s, engine.sandbox.path(u"defaults.ini"_s));
        engine.remake(options);
        const QString program = AppPaths::engineDir() + "/ollama"_L1;
        AppPaths::ensure(AppPaths::engineDir());
        QFile::copy(demoProgram, program);
        engine.start();
        QCOMPARE(engine->enginePath(), program);
        desktop.answer = engine.sandbox.chooseScript(u"echo another"_s);
        engine->chooseManually();
        QTRY_COMPARE_WITH_TIMEOUT(engine->enginePath(), *desktop.answer, 30'000);
        QCOMPARE(engine.kind(), State::running);
    }

    void keepsTheEndOfTheLog()
    {
        QCOMPARE(logWith({u"a"_s}, u"on\r\n\ne\r\rx"_s), (QStringList{u"a"_s, u"on"_s, u"e"_s, u"x"_s}));
        QStringList numbers;
        for (int number = 1; number <= 100; ++number)
            numbers << QString::number(number);
        QCOMPARE(logWith(numbers.first(60), numbers.mid(60).join(u'\n')), numbers.mid(20));
    }

    // What is installed counts at once, and is what the next start runs, in the place of the engine that went
    // on.
    void installsOverARunningEngine()
    {
        ReleaseServer server;
        server.publish(InstallerUnderTest::demoRelease().compressed());
        EngineOptions options = Sandbox::engineOptions();
        options.installer = server.options();
        EngineUnderTest engine({}, options);
        engine.start();
        engine->startInstall();
        QTRY_VERIFY_WITH_TIMEOUT(!engine->install(), 30'000);
        const QString program = InstallerUnderTest::installedProgram();
        QCOMPARE(engine.defaults().string(u"ownEnginePath"_s), program);
        QVERIFY(!engine.defaults().string(u"manualEnginePath"_s));
        QVERIFY(engine.kind() == State::stopped && !hasNoChildren());
        QVERIFY(engine->hasEngine());
        engine.start();
        QCOMPARE(engine->enginePath(), program);
        QCOMPARE(engine->state(), (State{State::running, {}}));
        QVERIFY(!engine->adoptedServer());
        QVERIFY(QFile::exists(AppPaths::engineDir() + "/lib/ollama/cuda/libengine.so"_L1));
    }
};

QTEST_GUILESS_MAIN(EngineManagerTest)
#include "tst_enginemanager.moc"
