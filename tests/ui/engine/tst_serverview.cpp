#include "platform/text/OutsideText.h"
#include "support/AppWithItsEngine.h"
#include "support/OnScreen.h"
#include "support/ReleaseServer.h"
#include "ui/engine/EngineCard.h"
#include "ui/engine/LogBox.h"
#include "ui/engine/ServerView.h"
#include "ui/widgets/ConfirmationDialog.h"

#include <QProgressBar>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

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

    void cardFollowsTheInstallation()
    {
        Sandbox sandbox;
        ReleaseServer server;
        server.publish(QByteArray(1'000'000, 'x'));
        server.answer(ReleaseServer::archivePath).heldAfter = 500'000;
        EngineOptions options = Sandbox::engineOptions();
        options.installer = server.options();
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
