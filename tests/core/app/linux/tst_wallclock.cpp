#include "support/AppUnderTest.h"
#include "support/WallClock.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using Kind = EngineManager::State::Kind;

// The user, or the network, sets the clock while things are under way.
class WallClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { wallclock::set(0); }

    void underWay_data()
    {
        QTest::addColumn<int>("hours");
        QTest::newRow("forward") << 5;
        QTest::newRow("back") << -5;
    }
    void underWay()
    {
        QFETCH(const int, hours);
        AppUnderTest app({{u"DEMO_ENGINE_INSTALLED"_s, u"phi3.5"_s},
                          {u"DEMO_ENGINE_CHUNK_MS"_s, u"20"_s},
                          {u"DEMO_ENGINE_PULL_MS"_s, u"4000"_s}});
        QList<double> speeds;
        connect(&app->queue(), &DownloadQueue::itemsChanged, &app->queue(), [&] {
            for (const DownloadItem &item : app->queue().items())
                speeds << item.speed;
        });
        app->queue().enqueue(u"m"_s, {});
        QTRY_VERIFY(app->queue().item(u"m"_s)->speed > 0);
        const double before = app->queue().item(u"m"_s)->speed;
        const QUuid id = app.newConversation();
        const QString text = u"word "_s.repeated(60).trimmed();
        app->send(u"echo "_s + text, id);
        QTRY_VERIFY(!app.contents(id).value(1).isEmpty());
        speeds.clear();
        wallclock::set(hours);

        QVERIFY(app.replyEnds());
        const auto saved = app.saved(id);
        QCOMPARE(saved->messages.last().content, text);
        const double rate = saved->messages.last().tokensPerSecond.value_or(0);
        QVERIFY(rate > 0 && rate < 10'000);
        const double moved = static_cast<double>(saved->createdAt.secsTo(saved->updatedAt)) / wallclock::hour;
        QCOMPARE(qRound(moved), hours);

        QTRY_VERIFY_WITH_TIMEOUT(app->isInstalled(u"m"_s) && app->queue().items().isEmpty(), 60'000);
        QVERIFY2(QSet<double>(speeds.begin(), speeds.end()).size() > 2, "the speed stands still");
        for (const double speed : std::as_const(speeds))
            QVERIFY2(speed > before / 100 && speed < before * 100, qPrintable(QString::number(speed)));
        QCOMPARE(app->banner(), std::nullopt);

        // Nor does the status loop mind, or the start of an engine.
        app->setServer(false);
        wallclock::set(-hours);
        app->setServer(true);
        QTRY_COMPARE(app->engine().state().kind, Kind::running);
        app.addModel(u"a"_s);
        QTRY_VERIFY(app->isInstalled(u"a"_s));
    }

    // What is older by the clock stands lower, whatever was done last; only a new chat begins in front.
    void order()
    {
        AppUnderTest app({{u"DEMO_ENGINE_INSTALLED"_s, u"phi3.5"_s}});
        const auto ids = [&app] {
            QList<QUuid> list;
            for (const Conversation &conversation : app->chats().conversations())
                list.append(conversation.id);
            return list;
        };
        const QUuid first = app.newConversation();
        const QUuid second = app.newConversation();
        wallclock::set(-5);
        QVERIFY(app.isAnswered(u"Hi"_s, first));
        QCOMPARE(ids(), QList<QUuid>({second, first}));
        wallclock::set(-4);
        const QUuid third = app.newConversation();
        QCOMPARE(ids(), QList<QUuid>({third, second, first}));
        QVERIFY(app.isAnswered(u"Hi"_s, third));
        QCOMPARE(ids(), QList<QUuid>({second, third, first}));
        wallclock::set(5);
        QVERIFY(app.isAnswered(u"Hi"_s, first) && app.saved(first));
        app.launch();
        QCOMPARE(ids(), QList<QUuid>({first, second, third}));
    }
};

QTEST_GUILESS_MAIN(WallClockTest)
#include "tst_wallclock.moc"
