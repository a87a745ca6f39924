#include "support/AllTexts.h"
#include "support/EngineSurfaces.h"
#include "support/Table.h"

#include <QTcpServer>

#include <functional>

using namespace Qt::StringLiterals;
using State = EngineManager::State;

using Press = std::function<void()>;

class EngineStatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void states_data()
    {
        const auto row = table<State::Kind, QString, QString, QString>("kind", "status", "action", "banner");
        row("no engine", State::notInstalled, u"Ollama not installed"_s, u"Start"_s,
            u"Ollama is not on this Mac yet"_s);
        row("stopped", State::stopped, u"Stopped"_s, u"Start"_s, u"The local server is off"_s);
        row("starting", State::starting, u"Starting…"_s, u"Stop"_s, u"Starting the local server…"_s);
        row("running", State::running, u"Running"_s, u"Stop"_s, {});
        row("failed", State::failed, u"Problem"_s, u"Start"_s, u"Open Server tab for details"_s);
    }

    void states()
    {
        QFETCH(const State::Kind, kind);
        QFETCH(const QString, status);
        QFETCH(const QString, action);
        QFETCH(const QString, banner);
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::LocalHost));
        AppWithItsEngine app;
        app.sandbox.defaults().set(u"serverWanted"_s, kind != State::stopped);
        if (kind == State::notInstalled)
            app.sandbox.defaults().remove(u"manualEnginePath"_s);
        if (kind == State::starting)
            app.sandbox.chooseScript(u"exec sleep 60\n"_s);
        if (kind == State::failed)
            app.sandbox.defaults().set(u"port"_s, static_cast<int>(other.serverPort()));
        app.launch();
        EngineSurfaces shown(app);
        QTRY_COMPARE(app->engine().state().kind, kind);
        QTRY_VERIFY(onscreen::shows(&shown.toolbar, status));

        const bool isOn = kind == State::starting || kind == State::running;
        const bool isThere = kind != State::notInstalled;
        QVERIFY(onscreen::shows(&shown.view, status));
        QCOMPARE(onscreen::shows(&shown.view, u"Stop server"_s), isOn);
        QCOMPARE(onscreen::shows(&shown.view, u"Start server"_s), !isOn);
        QCOMPARE(onscreen::shows(&shown.view, app->engine().address()), kind == State::running);
        QCOMPARE(onscreen::shows(&shown.view, u"Ollama was not found on this Mac."_s), !isThere);
        QCOMPARE(onscreen::shows(&shown.view, u"Use another port"_s), kind == State::failed);
        QCOMPARE(shown.onOff()->isChecked(), isOn);
        QCOMPARE(shown.onOff()->isEnabled(), isThere);
        QCOMPARE(alltexts::ofActions(shown.menu()).join(u'|'),
                 u"Server: %1|%2||Open Window|Quit"_s.arg(status, action));
        QVERIFY(!shown.menu().at(0)->isEnabled());
        QCOMPARE(shown.menu().at(1)->isEnabled(), isThere);
        QCOMPARE(onscreen::find(&shown.settings, u"Restart server"_s)->isEnabled(), isThere);
        QTRY_VERIFY(banner.isEmpty() ? shown.banner.sizeHint().height() == 0
                                     : onscreen::shows(&shown.banner, banner));
        QCOMPARE(onscreen::shows(&shown.banner, u"Start server"_s), kind == State::stopped);
        if (kind == State::failed) {
            const QString taken = u"Port %1 is already used by another program."_s.arg(other.serverPort());
            QVERIFY(onscreen::shows(&shown.banner, taken) && onscreen::shows(&shown.view, taken));
            onscreen::click(&shown.banner, banner);
            QCOMPARE(app->tab(), AppTab::server);
            onscreen::click(&shown.view, u"Use another port"_s);
            QTRY_VERIFY_WITH_TIMEOUT(onscreen::shows(&shown.view, u"Running"_s), 30'000);
            QVERIFY(app->engine().port() > other.serverPort());
            const QString offer = u"Off by default. When on, the server listens on all network interfaces "
                                  "(0.0.0.0:%1) and anyone on your network could use it."_s;
            QTRY_VERIFY(onscreen::shows(&shown.view, offer.arg(app->engine().port())));
        }
    }

    void stopsAndStarts()
    {
        AppWithItsEngine app;
        app.launch();
        EngineSurfaces shown(app);
        const auto switchOver = [&] { onscreen::click(&shown.toolbar, u"Local server"_s); };
        const auto stopInView = [&] { onscreen::click(&shown.view, u"Stop server"_s); };
        const auto startInView = [&] { onscreen::click(&shown.view, u"Start server"_s); };
        const auto startInBanner = [&] { onscreen::click(&shown.banner, u"Start server"_s); };
        const auto chooseInMenu = [&] { shown.chooseInMenu(); };
        const std::initializer_list<std::pair<Press, Press>> ways{{switchOver, switchOver},
                                                                  {stopInView, startInView},
                                                                  {stopInView, startInBanner},
                                                                  {chooseInMenu, chooseInMenu}};
        for (const auto &[stop, start] : ways) {
            QTRY_VERIFY(app.runs() && onscreen::shows(&shown.view, u"Stop server"_s));
            stop();
            QTRY_COMPARE(app->engine().state().kind, State::stopped);
            QVERIFY(!app.sandbox.defaults().boolean(u"serverWanted"_s));
            QTRY_VERIFY(onscreen::shows(&shown.banner, u"Start server"_s) && !shown.onOff()->isChecked());
            start();
            QTRY_VERIFY(app.runs() && shown.onOff()->isChecked());
            QVERIFY(app.sandbox.defaults().boolean(u"serverWanted"_s));
        }
        onscreen::click(&shown.toolbar, u"Copy"_s);
        QCOMPARE(app.desktop.pasteboard, app->engine().address());
    }
};

QTEST_MAIN(EngineStatesTest)
#include "tst_enginestates.moc"
