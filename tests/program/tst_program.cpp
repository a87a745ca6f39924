#include "support/Table.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60'000; // ms

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

bool somethingListens(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(1000);
}

} // namespace

// The whole program as its own process, with the demonstration engine and a profile of its own.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Programs run in the background are often told to ignore these, and pass that on.
    void initTestCase()
    {
        for (const int number : {SIGINT, SIGHUP})
            std::signal(number, SIG_DFL);
        qputenv("DEMO_ENGINE_INSTALLED", "phi3.5");
        qputenv("TARNWICK", TARNWICK_PROGRAM);
    }

    void init()
    {
        m_port = freePort();
        m_profile.emplace();
        m_profile->put(u"settings.ini"_s, "[General]\nguideDone=true\nmanualEnginePath=" TARNWICK_DEMO_ENGINE
                                          "\nport=" +
                                              QByteArray::number(m_port));
        launch({});
    }

    void cleanup()
    {
        if (m_program.state() != QProcess::NotRunning)
            kill(static_cast<pid_t>(m_program.processId()), SIGCONT);
        m_program.terminate();
        QVERIFY(m_program.state() == QProcess::NotRunning || m_program.waitForFinished());
        QVERIFY(engineEnds());
    }

    void theEngineGoesWithTheProgram_data()
    {
        const auto row = table<int>("signal");
        row("interrupted", SIGINT);
        row("terminated", SIGTERM);
        row("hung up", SIGHUP);
#ifdef Q_OS_LINUX
        row("killed", SIGKILL);
#endif
    }

    void theEngineGoesWithTheProgram()
    {
        QFETCH(const int, signal);
        kill(static_cast<pid_t>(m_program.processId()), signal);
        QVERIFY(m_program.waitForFinished());
        QCOMPARE(m_program.exitStatus(), signal == SIGKILL ? QProcess::CrashExit : QProcess::NormalExit);
        QVERIFY(signal == SIGKILL || m_program.exitCode() == 0);
        QVERIFY(engineEnds());
    }

    void aLaunchForANewChat()
    {
        m_program.terminate();
        QVERIFY(m_program.waitForFinished() && engineEnds());
        launch({u"--new-chat"_s});
        const auto chats = [this] {
            return QDir(m_profile->filePath(u"Tarnwick/chats"_s)).entryList(QDir::Files);
        };
        QTRY_COMPARE_WITH_TIMEOUT(chats().size(), 1, patience);
        QProcess second;
        second.start(QStringLiteral(TARNWICK_PROGRAM), {u"--profile"_s, m_profile->path(), u"--new-chat"_s});
        QVERIFY(second.waitForFinished());
        QTRY_COMPARE_WITH_TIMEOUT(chats().size(), 2, patience);
    }

    void manyLaunchesAtOnce()
    {
        // Whatever a killed one leaves.
        m_program.kill();
        QVERIFY(m_program.waitForFinished());
        std::vector<std::unique_ptr<QProcess>> launches;
        for (int i = 0; i < 20; ++i) {
            launches.push_back(std::make_unique<QProcess>());
            launches.back()->start(QStringLiteral(TARNWICK_PROGRAM), {u"--profile"_s, m_profile->path()});
        }
        const auto running = [&] {
            return std::count_if(launches.begin(), launches.end(),
                                 [](const auto &launch) { return launch->state() != QProcess::NotRunning; });
        };
        QTRY_COMPARE_WITH_TIMEOUT(running(), 1, patience);
        for (const auto &launch : launches) {
            launch->terminate();
            QVERIFY(launch->state() == QProcess::NotRunning || launch->waitForFinished());
            QCOMPARE(launch->exitCode(), 0);
        }
    }

    void launchesThatFailSaySo_data()
    {
        const auto row = table<QString, QByteArray>("script", "sentence");
        row("a program that is frozen", u"kill -STOP $0"_s, "process");
        row("no home", u"shift; unset HOME XDG_DATA_HOME"_s, "neither HOME nor XDG_DATA_HOME");
        row("a home that is no folder", u"shift; export HOME=/dev/null; unset XDG_DATA_HOME"_s,
            "cannot keep its data in \"/dev/null/");
        row("a link in the lock's place",
            u"mkdir $1/new; ln -s nothing $1/new/instance.lock; set -- $1/new"_s,
            "instance.lock\", which is not an ordinary file of yours");
    }

    // And they do not end as if all was well.
    void launchesThatFailSaySo()
    {
        QFETCH(const QString, script);
        QFETCH(const QByteArray, sentence);
        QProcess second;
        second.start(u"sh"_s, {u"-c"_s, script + u"; exec \"$TARNWICK\" ${1:+--profile \"$1\"}"_s,
                               QString::number(m_program.processId()), m_profile->path()});
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += second.readAllStandardError()).contains(sentence), patience);
        second.terminate();
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 1);
    }

private:
    void launch(const QStringList &arguments)
    {
        m_program.setProcessChannelMode(QProcess::ForwardedChannels);
        m_program.start(QStringLiteral(TARNWICK_PROGRAM),
                        QStringList{u"--profile"_s, m_profile->path()} + arguments);
        QVERIFY(m_program.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(somethingListens(m_port), patience);
    }

    bool engineEnds() const
    {
        return QTest::qWaitFor([this] { return !somethingListens(m_port); }, patience);
    }

    std::optional<TestFolder> m_profile;
    QProcess m_program;
    quint16 m_port = 0;
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "tst_program.moc"
