#include "core/app/Shutdown.h"
#include "core/engine/AppPaths.h"
#include "core/engine/ChildProcessHolder.h"
#include "support/InstallerUnderTest.h"
#include "support/NewUser.h"
#include "support/RunningChild.h"
#include "support/Waiting.h"
#include "ui/app/GuideView.h"
#include "ui/engine/ServerToolbar.h"

#include <QPlainTextEdit>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 120'000; // ms

} // namespace

// All that a new user does in the first hour, with the program's own window, from one launch to the next.
class FirstUseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_app.server.publish(InstallerUnderTest::demoRelease().compressed()); }

    void cleanupTestCase()
    {
        m_app.close();
        ChildProcessHolder::shared().terminate();
        QTRY_VERIFY_WITH_TIMEOUT(hasNoChildren(), patience);
    }

    void installsTheEngine()
    {
        m_app.click(u"Install Ollama (about 170 MB)"_s);
        QTRY_VERIFY_WITH_TIMEOUT(m_app.shows(u"Ollama is ready on this Mac."_s), patience);
        QVERIFY(m_app->engine().enginePath().startsWith(AppPaths::engineDir()));
    }

    void pullsTheBestPick()
    {
        m_app.click(u"Download "_s + m_app.best().name);
        QTRY_VERIFY_WITH_TIMEOUT(m_app.shows(u"A model is installed."_s), patience);
        QVERIFY(m_app->isInstalled(m_app.best().name) && m_app.shows(u"Running"_s));
    }

    void chats()
    {
        m_app.click(u"Open a chat"_s);
        say(u"echo The whole way"_s);
        QCOMPARE(messages().last().content, u"The whole way"_s);
    }

    void exports()
    {
        m_app.desktop.answer = m_app.sandbox.path(u"exported.md"_s);
        m_app.click(u"Export as Markdown"_s);
        const QByteArray document = "# echo The whole way\n\n_Model: " + m_app.best().name.toUtf8() +
                                    "_\n\n## You\n\necho The whole way\n\n## Assistant\n\nThe whole way\n\n";
        QTRY_COMPARE_WITH_TIMEOUT(InstallerUnderTest::contentOf(*m_app.desktop.answer), document, patience);
    }

    void sharesAndStops()
    {
        QTest::keyClick(m_app.window(), Qt::Key_3, Qt::ControlModifier);
        m_app.click(u"Share on my network"_s);
        m_app.click(u"Share"_s);
        const QString line = u"Listening on 0.0.0.0:%1"_s.arg(m_app->engine().port());
        QTRY_VERIFY_WITH_TIMEOUT(m_app->engine().logLines().join(u'\n').contains(line), patience);
        QTRY_VERIFY_WITH_TIMEOUT(m_app.shows(u"Running"_s), patience);
        m_app.click(u"Stop server"_s);
        QTRY_VERIFY(onscreen::shows(m_app.window()->findChild<ServerToolbar *>(), u"Stopped"_s));
        QTRY_VERIFY_WITH_TIMEOUT(hasNoChildren(), patience);
    }

    void quits()
    {
        m_app.window()->resize(1010, 760);
        m_said = messages();
        m_app.window()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_app.window()));
        QSignalSpy quit(m_app.window(), &MainWindow::quitRequested);
        QTest::keyClick(m_app.window(), Qt::Key_Q, Qt::ControlModifier);
        QCOMPARE(quit.size(), 1);
        m_app.window()->close();
        waitFor(shutDown(*m_app), patience);
        QCOMPARE(runningTasks(), 0);
        m_app.close();
        resumeAfterQuitting();
        QTRY_VERIFY_WITH_TIMEOUT(hasNoChildren(), patience);
    }

    void findsEverythingAgain()
    {
        m_app.open();
        QVERIFY(!m_app.window()->findChild<GuideView *>());
        QCOMPARE(m_app.window()->size(), QSize(1010, 760));
        QVERIFY(m_app->engine().shareOnNetwork());
        QVERIFY(onscreen::shows(m_app.window()->findChild<ServerToolbar *>(), u"Stopped"_s));
        QCOMPARE(messages().size(), m_said.size());
        for (qsizetype i = 0; i < m_said.size(); ++i) {
            QCOMPARE(messages().at(i).id, m_said.at(i).id);
            QCOMPARE(messages().at(i).content, m_said.at(i).content);
        }

        m_app.click(u"Start server"_s);
        QTRY_VERIFY_WITH_TIMEOUT(m_app->isInstalled(m_app.best().name), patience);
        QTest::keyClick(m_app.window(), Qt::Key_2, Qt::ControlModifier);
        say(u"echo once more"_s);
        QCOMPARE(messages().last().content, u"once more"_s);
    }

private:
    void say(const QString &text)
    {
        QTRY_VERIFY(m_app.shows(u"Message"_s));
        const qsizetype before = messages().size();
        auto *input = onscreen::find<QPlainTextEdit>(m_app.window(), u"Message"_s);
        QTest::keyClicks(input, text);
        QTest::keyClick(input, Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(replyHasEnded(before + 2), patience);
        QCOMPARE(m_app->banner(), std::nullopt);
    }

    const QList<ChatMessage> &messages() { return m_app->chats().conversations().first().messages; }
    bool replyHasEnded(qsizetype count) { return !m_app->generatingID() && messages().size() == count; }

    NewUser m_app;
    QList<ChatMessage> m_said;
};

QTEST_MAIN(FirstUseTest)
#include "tst_firstuse.moc"
