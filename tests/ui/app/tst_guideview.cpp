#include "support/AppOnScreen.h"
#include "support/NewUser.h"
#include "ui/app/BannerView.h"
#include "ui/app/GuideView.h"
#include "ui/app/SidebarView.h"
#include "ui/models/ModelRow.h"

#include <QProgressBar>

using namespace Qt::StringLiterals;

namespace {

bool showsGuide(const QWidget *window)
{
    const auto *guide = window->findChild<GuideView *>();
    return guide && guide->isVisible() && !window->findChild<SidebarView *>()->isVisible();
}

} // namespace

class GuideViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromNoEngineOn()
    {
        NewUser app;
        app.server.publish("no archive");
        const QString install = u"Install Ollama (about 170 MB)"_s;
        const QString download = u"Download "_s + app.best().name;
        QVERIFY(showsGuide(app.window()) && app.shows(u"Step 1"_s));
        QVERIFY(app.shows(app.best().bestFor + u". Best pick for 17.18 GB of memory."_s));
        QVERIFY(!app.canClick(download) && !app.canClick(u"Open a chat"_s));

        app.click(install);
        QTRY_VERIFY(app.shows(u"Installation error"_s) && app.canClick(install));
        app.desktop.answer = QString::fromUtf8(TARNWICK_DEMO_ENGINE);
        app.click(u"Choose Ollama manually…"_s);
        QTRY_VERIFY(app.shows(u"Step 1, done"_s) && !app.shows(u"Choose Ollama manually…"_s));
        QVERIFY(app.canClick(download) && !app.canClick(u"Open a chat"_s));
    }

    void aFailedDownloadIsResumedAndLeadsToAChat()
    {
        AppOnScreen app({}, AppOnScreen::first);
        const QString button = u"Download "_s + ModelCatalog::bestPick(app->memory()).name;
        app.demo.setFaults(u"pull:no-space"_s);
        app.click(button);
        QTRY_VERIFY(app.shows(u"Resume"_s) && !app.shows(button));
        app.demo.setFaults({});
        app.click(u"Resume"_s);
        QTRY_VERIFY_WITH_TIMEOUT(app.shows(u"Step 2, done"_s), 30'000);
        QVERIFY(showsGuide(app.window()));

        // The engine's first is taken.
        app.addModel(u"my-own:1b"_s);
        QTRY_COMPARE(app->installed().size(), 2);
        QTRY_COMPARE(onscreen::words(app.window()->focusWidget()), u"Open a chat"_s);
        app.click(u"Open a chat"_s);
        QVERIFY(app.sandbox.defaults().boolean(u"guideDone"_s));
        QTRY_VERIFY(!showsGuide(app.window()));
        QCOMPARE(app->tab(), AppTab::chat);
        QCOMPARE(app->chats().conversations().first().model, app->installed().first().name);
    }

    void canBeLeftDuringADownload()
    {
        AppOnScreen app({{u"DEMO_ENGINE_PULL_MS"_s, u"1500"_s}}, AppOnScreen::first);
        const QString name = ModelCatalog::bestPick(app->memory()).name;
        app.click(u"Download "_s + name);
        app.click(u"Skip the guide"_s);
        const auto row = [&] { return onscreen::find<ModelRow>(app.window(), name); };
        QTRY_VERIFY(row() && onscreen::find<QProgressBar>(row(), u"Download progress"_s));
        QTRY_VERIFY_WITH_TIMEOUT(onscreen::shows(row(), u"Chat"_s), 30'000);
    }

    void standsBeforeTheTabsUntilItIsSkipped()
    {
        AppOnScreen app({{u"DEMO_ENGINE_INSTALLED"_s, u"my-own:1b"_s}}, AppOnScreen::first);
        QVERIFY(app.shows(u"Local server"_s));
        QVERIFY(app.shows(u"Step 2, done"_s)); // any model will do
        app->setBanner(u"Not enough room"_s);
        QTRY_VERIFY(app.shows(u"Not enough room"_s));
        for (const Qt::Key key : {Qt::Key_2, Qt::Key_3, Qt::Key_N, Qt::Key_F})
            app.press(key);
        QCOMPARE(app->tab(), AppTab::models);
        app.click(u"Dismiss"_s);
        QTRY_COMPARE(app.find<BannerView>()->height(), 0);
        QVERIFY(showsGuide(app.window()));

        app.click(u"Skip the guide"_s);
        QTRY_VERIFY(!showsGuide(app.window()));
        QCOMPARE(app->tab(), AppTab::models);
        app.press(Qt::Key_2);
        QCOMPARE(app->tab(), AppTab::chat);
        app.reopen();
        QVERIFY(!app.find<GuideView>() && app.find<SidebarView>()->isVisible());
    }
};

QTEST_MAIN(GuideViewTest)
#include "tst_guideview.moc"
