#include "core/engine/EngineVersion.h"
#include "platform/text/OutsideText.h"
#include "support/AppUnderTest.h"
#include "support/AppWithItsEngine.h"
#include "support/FakeDesktop.h"
#include "support/OnScreen.h"
#include "support/ReleaseServer.h"
#include "support/Table.h"
#include "ui/engine/EngineCard.h"
#include "ui/engine/LogBox.h"
#include "ui/engine/ServerView.h"
#include "ui/widgets/ConfirmationDialog.h"

#include <QProgressBar>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

// A program that goes on with `script` once it is let go. It does not count as chosen.
QString waitingScript(Sandbox &sandbox, const QString &script)
{
    const QString wait = u"while ! [ -e '%1' ]; do sleep 0.01; done; "_s.arg(sandbox.path(u"go"_s));
    const QString program = sandbox.chooseScript(wait + script);
    sandbox.defaults().remove(u"manualEnginePath"_s);
    return program;
}

void letGo(const Sandbox &sandbox)
{
    if (!QFile(sandbox.path(u"go"_s)).open(QIODevice::WriteOnly))
        qFatal("The program cannot be let go");
}

} // namespace

class ServerViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsByTheKeyboardAndTellsOfTheEngine()
    {
        AppWithItsEngine app;
        app.sandbox.defaults().set(u"serverWanted"_s, false);
        app.sandbox.defaults().set(u"shareOnNetwork"_s, true);
        app.launch();
        ServerView view(*app, app.desktop);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QVERIFY(onscreen::shows(&view, u"No output yet."_s));
        onscreen::find(&view, u"Start server"_s)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QTRY_VERIFY(onscreen::shows(&view, u"Running"_s));
        QCOMPARE(QApplication::focusWidget(), onscreen::find(&view, u"Stop server"_s));
        QVERIFY(onscreen::shows(&view, u"Found at "_s + app->engine().enginePath()));
        QTRY_VERIFY(onscreen::shows(&view, u"Version "_s + app->engine().engineVersion()));
        QTRY_VERIFY(onscreen::find<LogBox>(&view, u"Engine output"_s)->toPlainText().contains("0.0.0.0"_L1));
        // Also while it is shared, the address stays the machine's own.
        onscreen::click(&view, u"Copy"_s);
        QCOMPARE(app.desktop.pasteboard, u"http://127.0.0.1:%1"_s.arg(app->engine().port()));
        QVERIFY(onscreen::shows(&view, app.desktop.pasteboard));
    }

    void sharesOnlyAfterConfirmation()
    {
        AppWithItsEngine app;
        app.launch();
        ServerView view(*app, app.desktop);
        view.show();
        QTRY_VERIFY(onscreen::shows(&view, u"Stop server"_s) && app.runs());
        auto *share = onscreen::find<QAbstractButton>(&view, u"Share on my network"_s);
        QSignalSpy states(&app->engine(), &EngineManager::stateChanged);
        const auto askAndAnswer = [&view, share](const QString &button) {
            QTest::mouseClick(share, Qt::LeftButton);
            const QPointer<ConfirmationDialog> dialog = view.findChild<ConfirmationDialog *>();
            if (!dialog || !onscreen::shows(dialog, u"Share on your network?"_s) || share->isChecked())
                qFatal("No confirmation shows");
            onscreen::click(dialog, button);
            return QTest::qWaitFor([&dialog] { return !dialog; });
        };
        QVERIFY(askAndAnswer(u"Cancel"_s));
        QVERIFY(!app->engine().shareOnNetwork() && !share->isChecked());
        QCOMPARE(states.size(), 0);

        QVERIFY(askAndAnswer(u"Share"_s));
        QVERIFY(app->engine().shareOnNetwork());
        QCOMPARE(app->engine().state().kind, EngineManager::State::stopped);
        QTRY_VERIFY(share->isChecked() && app.runs());

        onscreen::click(&view, u"Stop server"_s);
        QTRY_VERIFY(onscreen::shows(&view, u"Stopped"_s));
        states.clear();
        QTest::mouseClick(share, Qt::LeftButton);
        QVERIFY(!app->engine().shareOnNetwork() && !share->isChecked());
        QCOMPARE(states.size(), 0);
    }

    void saysWhoseServerItIs()
    {
        AppUnderTest app;
        ServerView view(*app, app.desktop);
        view.show();
        QVERIFY(onscreen::shows(&view, u"This server belongs to another program. Whether it is shared on the "
                                       "network, and where its models are kept, is up to that program."_s));
    }

    void saysWhatAStartWaitsFor()
    {
        AppWithItsEngine app;
        qputenv("DEMO_ENGINE_FAULT", "stop-delay=500");
        app.launch();
        ServerView view(*app, app.desktop);
        view.show();
        QTRY_VERIFY(app.runs());
        qunsetenv("DEMO_ENGINE_FAULT");
        app->setServer(false);
        app->setServer(true);
        QTRY_VERIFY(onscreen::shows(&view, u"The previous engine is still ending…"_s));
        QVERIFY(onscreen::shows(&view, u"Starting…"_s));
        QTRY_VERIFY(onscreen::shows(&view, u"Running"_s));
        QVERIFY(!onscreen::shows(&view, u"The previous engine is still ending…"_s));
    }

    void cardFollowsTheInstallation()
    {
        Sandbox sandbox;
        ReleaseServer server;
        server.publish(QByteArray(1'000'000, 'x'));
        server.answer(ReleaseServer::archivePath).heldAfter = 500'000;
        EngineOptions options = Sandbox::engineOptions();
        options.installer = server.options();
        options.installer.archiveTool = waitingScript(sandbox, u"exit 1"_s);
        EngineManager engine(sandbox.defaults(), options);
        EngineCard card(engine);
        card.resize(800, 300);
        card.show();
        QVERIFY(QTest::qWaitForWindowActive(&card));
        const QString install = u"Install Ollama (about 170 MB)"_s;
        const auto bar = [&card] { return onscreen::find<QProgressBar>(&card, u"Installation progress"_s); };
        const auto error = [&card] { return onscreen::find<QTextEdit>(&card, u"Installation error"_s); };
        QVERIFY(!bar() && !error() && onscreen::shows(&card, u"Choose Ollama manually…"_s));

        onscreen::find(&card, install)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QTRY_COMPARE(bar() ? 2 * bar()->value() : 0, bar() ? bar()->maximum() : 1);
        QVERIFY(!onscreen::shows(&card, install) && onscreen::shows(&card, engine.install()->text));
        QCOMPARE(QApplication::focusWidget(), onscreen::find(&card, u"Cancel"_s));

        onscreen::click(&card, u"Cancel"_s);
        QTRY_VERIFY(onscreen::shows(&card, install) && error());
        QCOMPARE(error()->toPlainText(), *engine.installError());
        QVERIFY(!bar() && card.isAncestorOf(QApplication::focusWidget()));

        server.release();
        onscreen::click(&card, install);
        QTRY_VERIFY(onscreen::shows(&card, u"Unpacking…"_s));
        QVERIFY(!onscreen::find(&card, u"Cancel"_s)->isEnabled());
        letGo(sandbox);
        QTRY_VERIFY(onscreen::shows(&card, install));
    }

    void cardFollowsAChoice()
    {
        Sandbox sandbox;
        FakeDesktop desktop;
        EngineOptions options = Sandbox::engineOptions();
        options.desktop = &desktop;
        EngineManager engine(sandbox.defaults(), options);
        EngineCard card(engine);
        card.show();
        const QString checking = u"Checking that it runs…"_s;
        const QString version = u"DEMO_ENGINE_VERSION=1.2-rc3 OLLAMA_HOST=127.0.0.1:1 exec demo \"$1\""_s;
        desktop.answer = waitingScript(sandbox, version);
        engine.chooseManually();
        QTRY_VERIFY(onscreen::shows(&card, checking));
        QVERIFY(onscreen::find<QProgressBar>(&card, u"Installation progress"_s));
        QVERIFY(!onscreen::shows(&card, u"Cancel"_s) && onscreen::shows(&card, u"Choose Ollama manually…"_s));
        letGo(sandbox);
        QTRY_VERIFY_WITH_TIMEOUT(onscreen::shows(&card, u"Found at "_s + *desktop.answer), 30'000);
        QTRY_VERIFY(onscreen::shows(&card, u"Choose another…"_s) && !onscreen::shows(&card, checking));
        QVERIFY(onscreen::shows(&card, u"Version 1.2-rc3"_s));
    }

    void versions_data()
    {
        const auto row = table<QString, QString>("told", "shown");
        row("server's answer", u"0.32.15"_s, u"0.32.15"_s);
        row("program alone",
            u"Warning: could not connect to a running Ollama instance\nWarning: client version is 0.1"_s,
            u"0.1"_s);
        row("program and server", u"ollama version is 0.2\nWarning: client version is 0.1"_s, u"0.1"_s);
        row("same", u"ollama version is 0.2\n"_s, u"0.2"_s);
        row("other words", u"my version is fine"_s, u"my version is fine"_s);
    }
    void versions()
    {
        QFETCH(const QString, told);
        QTEST(shownVersion(told), "shown");
    }

    // Whatever it showed before.
    void logShowsTheLinesThereAre()
    {
        const QString endless(1 << 20, u'b');
        const QList<QStringList> states{
            {u"a"_s, u"a"_s, u"b"_s}, {u"a"_s, u"b"_s},        {u"b"_s, endless}, {endless, u"c"_s},
            {u"d\u2029d"_s},          {u"d\u2029d"_s, u"e"_s}, {u"e"_s, u"f"_s},  {}};
        LogBox box;
        for (const QStringList &lines : states) {
            box.showLines(lines);
            QStringList shown;
            for (const QString &line : lines)
                shown.append(shownLines(line, 8000).replace(u'\u2029', u'\n'));
            QCOMPARE(box.toPlainText(), shown.join(u'\n'));
        }
    }

    void newLinesLeaveTheReaderAlone()
    {
        LogBox box;
        box.resize(600, 160);
        box.show();
        QStringList lines;
        for (int line = 0; line < 80; ++line)
            lines.append(u"line %1"_s.arg(line));
        box.showLines(lines);
        box.moveCursor(QTextCursor::Start);
        QVERIFY(box.find(u"line 30"_s));
        box.verticalScrollBar()->setValue(20);
        lines = lines.mid(3) + QStringList{u"line 80"_s, u"line 81"_s, u"line 82"_s};
        box.showLines(lines);
        QCOMPARE(box.textCursor().selectedText(), u"line 30"_s);
        QCOMPARE(box.verticalScrollBar()->value(), 17);
        QCOMPARE(box.toPlainText(), lines.join(u'\n'));

        QVERIFY(box.find(lines.last()));
        box.showLines(lines + QStringList{u"one more"_s});
        QCOMPARE(box.textCursor().selectedText(), lines.last());
    }
};

QTEST_MAIN(ServerViewTest)
#include "tst_serverview.moc"
