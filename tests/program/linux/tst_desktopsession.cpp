#include "support/DesktopTray.h"
#include "support/DesktopWindow.h"
#include "support/OwnSession.h"
#include "support/TestFolder.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace desktopwindow;

namespace {

constexpr int patience = 60'000; // ms

} // namespace

// The whole program as its own process on a desktop of the test's own, which has a tray when the test says
// so.
class DesktopSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OwnSession::isEntered() || QStandardPaths::findExecutable(u"xdotool"_s).isEmpty())
            QSKIP("dbus-run-session, xvfb-run and xdotool are needed");
    }

    void init()
    {
        m_profile.emplace();
        m_profile->put(u"settings.ini"_s,
                       "[General]\nguideDone=true\nserverWanted=false\nshowMenuBar=true\n");
        launch();
    }

    void cleanup()
    {
        m_program.terminate();
        QVERIFY(ends());
        m_tray.leave();
    }

    void staysInATrayThatComesAndGoes()
    {
        comeToTheTray();
        close();
        QVERIFY(m_tray.activate());
        QTRY_VERIFY_WITH_TIMEOUT(showsWindow(), patience);
        close();
        QVERIFY(m_tray.choose(u"Open Window"_s));
        QTRY_VERIFY_WITH_TIMEOUT(showsWindow(), patience);
        close();
        QProcess second;
        start(second);
        QVERIFY(second.waitForFinished(patience));
        QCOMPARE(second.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(showsWindow(), patience);
        close();
        QCOMPARE(m_program.state(), QProcess::Running);

        // Nothing is left that would lead to the program.
        QVERIFY(m_tray.leave());
        QTRY_VERIFY_WITH_TIMEOUT(showsWindow(), patience);
        comeToTheTray();
        close();
        QVERIFY(m_tray.choose(u"Quit"_s));
        QVERIFY(ends());
        QCOMPARE(m_program.exitCode(), 0);
    }

    void withoutATrayItQuitsAndComesBackInItsPlace()
    {
        const auto isPut = [] {
            putInPlace();
            return isInPlace();
        };
        QTRY_VERIFY_WITH_TIMEOUT(isPut(), patience);
        for (const QString &keys : {u"ctrl+w"_s, u"ctrl+q"_s}) {
            press(keys);
            QVERIFY(ends());
            QCOMPARE(m_program.exitStatus(), QProcess::NormalExit);
            QCOMPARE(m_program.exitCode(), 0);
            launch();
            QTRY_VERIFY_WITH_TIMEOUT(isInPlace(), patience);
        }
    }

private:
    void start(QProcess &program) const
    {
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(QStringLiteral(TARNWICK_PROGRAM), {u"--profile"_s, m_profile->path()});
    }

    void launch()
    {
        start(m_program);
        QTRY_VERIFY_WITH_TIMEOUT(showsWindow(), patience);
    }

    bool ends() { return m_program.state() == QProcess::NotRunning || m_program.waitForFinished(patience); }

    void close()
    {
        press(u"ctrl+w"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!showsWindow(), patience);
    }

    void comeToTheTray()
    {
        const qsizetype before = m_tray.items();
        QVERIFY(m_tray.come());
        QTRY_COMPARE_WITH_TIMEOUT(m_tray.items(), before + 1, patience);
    }

    DesktopTray m_tray;
    std::optional<TestFolder> m_profile;
    QProcess m_program;
};

int main(int argc, char **argv)
{
    if (const std::optional<int> status = OwnSession::run(argc, argv))
        return *status;
    const QCoreApplication application(argc, argv);
    DesktopSessionTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desktopsession.moc"
