#include "core/app/Shutdown.h"
#include "core/engine/AppPaths.h"
#include "support/AppWithItsEngine.h"
#include "support/NoLoginItem.h"
#include "support/OnScreen.h"
#include "support/RunningChild.h"
#include "support/Waiting.h"
#include "ui/app/SettingsView.h"
#include "ui/engine/ServerToolbar.h"
#include "ui/engine/ServerView.h"

#include <QDir>

using namespace Qt::StringLiterals;

// A download that is cut short by the end of its engine goes on from there, whatever ended the engine.
class PullEndsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothing_data()
    {
        QTest::addColumn<QString>("button"); // without one, the program quits
        for (const QString &button :
             {u"Stop server"_s, u"Local server"_s, u"Share on my network"_s, u"Restart server"_s, QString()})
            QTest::newRow(qPrintable(button)) << button;
    }
    void losesNothing()
    {
        QFETCH(const QString, button);
        AppWithItsEngine app;
        qputenv("DEMO_ENGINE_PULL_MS", "10000");
        app.dependencies.downloads.freeBytes = [](const QString &) { return std::optional<qint64>(); };
        app.sandbox.defaults().set(u"shareOnNetwork"_s, true);
        app.launch();
        NoLoginItem login;
        ServerView server(*app, app.desktop);
        ServerToolbar toolbar(*app, app.desktop);
        SettingsView settings(*app, app.desktop, app.sandbox.defaults(), login);
        QTRY_VERIFY(app.runs());
        const QString model = u"phi3.5"_s;
        const auto item = [&app, &model] { return app->queue().item(model); };
        app->queue().enqueue(model, {});
        QTRY_VERIFY(item()->completed > 0);

        app->engine().setPort(*AppPaths::findFreePort(app->engine().port())); // at the next start
        for (QWidget *view : QList<QWidget *>{&server, &toolbar, &settings}) {
            view->show();
            if (onscreen::canClick(view, button))
                onscreen::click(view, button);
        }
        if (button.isEmpty())
            ::waitFor(shutDown(*app));
        else
            QCOMPARE(app->engine().state().kind, EngineManager::State::stopped);
        resumeAfterQuitting();
        QTRY_VERIFY(app.runs() || hasNoChildren());

        app->queue().enqueue(model, {});
        QTRY_VERIFY(item()->completed > 0 || item()->phase.kind == DownloadItem::Phase::failed);
        QCOMPARE(item()->phase.message, QString());
        const QDir blobs(AppPaths::modelsDir() + "/blobs"_L1);
        const QFileInfoList partials = blobs.entryInfoList({u"*-partial"_s});
        QVERIFY(!partials.isEmpty() && partials.first().size() > 0);
        app.drop();
        ChildProcessHolder::shared().terminate();
        QTRY_VERIFY(hasNoChildren());
    }
};

QTEST_MAIN(PullEndsTest)
#include "tst_pullends.moc"
