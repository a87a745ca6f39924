#include "core/engine/AppPaths.h"
#include "support/NoLoginItem.h"
#include "support/SettingsOnScreen.h"
#include "support/Table.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

NoLoginItem noLogin;

QLineEdit *portField(SettingsOnScreen &app)
{
    return onscreen::find<QLineEdit>(app.view(), u"Port"_s);
}

// Types into the port field in place of what it shows.
void type(SettingsOnScreen &app, const QString &text, Qt::Key commit)
{
    portField(app)->setFocus();
    portField(app)->selectAll();
    QTest::keyClicks(portField(app), text);
    QTest::keyClick(portField(app), commit);
}

} // namespace

class SettingsViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesAPort_data()
    {
        const auto row = table<QString, Qt::Key, int>("typed", "commit", "port"); // 0: as it was
        row("return", u"11500"_s, Qt::Key_Return, 11500);
        row("leaving", u"11500"_s, Qt::Key_Tab, 11500);
        row("highest", u" 65535 "_s, Qt::Key_Return, 65535);
        row("zero", u"0"_s, Qt::Key_Return, 0);
        row("too high", u"65536"_s, Qt::Key_Return, 0);
        row("letters", u"eleven"_s, Qt::Key_Return, 0);
    }

    void takesAPort()
    {
        QFETCH(const QString, typed);
        QFETCH(const Qt::Key, commit);
        QFETCH(const int, port);
        SettingsOnScreen app(noLogin);
        const int expected = port == 0 ? app.demo.port() : port;
        type(app, typed, commit);
        QCOMPARE(app->engine().port(), expected);
        QCOMPARE(portField(app)->text(), QString::number(expected));
        // What runs stays where it is.
        QCOMPARE(app->engine().state().kind, EngineManager::State::running);
    }

    void followsThePort()
    {
        SettingsOnScreen app(noLogin);
        app->engine().setPort(11501);
        QTRY_COMPARE(portField(app)->text(), u"11501"_s);

        // What is selected, or being typed, stays.
        portField(app)->setFocus();
        portField(app)->selectAll();
        app.sandbox.defaults().set(u"showMenuBar"_s, false);
        QTRY_VERIFY(!app.button(u"Show status in the menu bar"_s)->isChecked());
        QVERIFY(portField(app)->hasSelectedText());
        portField(app)->deselect();
        QTest::keyClicks(portField(app), u"9"_s);
        const QString typed = portField(app)->text();
        app->engine().setPort(11502);
        app.sandbox.defaults().set(u"showMenuBar"_s, true);
        QTRY_VERIFY(app.button(u"Show status in the menu bar"_s)->isChecked());
        QCOMPARE(portField(app)->text(), typed);
    }

    void restartsTheServer()
    {
        SettingsOnScreen app(noLogin);
        app.sandbox.defaults().set(u"serverWanted"_s, false);
        app.click(u"Restart server"_s);
        QCOMPARE(app->engine().state().kind, EngineManager::State::stopped);
        QTRY_COMPARE(app->engine().state().kind, EngineManager::State::running);
        QVERIFY(!app.sandbox.defaults().boolean(u"serverWanted"_s));
    }

    void measuresAtEveryOpening()
    {
        SettingsOnScreen app(noLogin);
        QVERIFY(app.shows(AppPaths::modelsDir()));
        QTRY_VERIFY(app.shows(u"Total size used: Zero KB"_s));
        app.click(u"Show in Finder"_s);
        QCOMPARE(app.desktop.revealed, {AppPaths::modelsDir()});
        QFile model(AppPaths::modelsDir() + "/model"_L1);
        QVERIFY2(model.open(QIODevice::WriteOnly), "The folder is there now");
        QVERIFY(model.resize(523'000'000));
        app.reopen();
        QVERIFY(app.shows(u"Measuring…"_s));
        QTRY_VERIFY(app.shows(u"Total size used: 523 MB"_s));
    }

    void closesWhileItMeasures()
    {
        SettingsOnScreen app(noLogin);
        app.reopen();
        QVERIFY(app.shows(u"Measuring…"_s));
        const int port = app->engine().port();
        type(app, u"11503"_s, Qt::Key_Escape); // nor is what was typed committed
        QVERIFY(!app.view()->isVisible());
        app.drop();
        QCOMPARE(app->engine().port(), port);
        QTRY_COMPARE(runningTasks(), 1); // the status loop
    }

    void switchesTheStatusItem()
    {
        SettingsOnScreen app(noLogin);
        for (const bool wanted : {true, false}) {
            app.click(u"Show status in the menu bar"_s);
            QCOMPARE(app.button(u"Show status in the menu bar"_s)->isChecked(), wanted);
            QCOMPARE(app.sandbox.defaults().boolean(u"showMenuBar"_s), wanted);
        }
    }
};

QTEST_MAIN(SettingsViewTest)
#include "tst_settingsview.moc"
