#include "support/Table.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

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
