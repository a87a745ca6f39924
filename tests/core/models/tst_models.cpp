// What is decided about models: the catalogue against the machine, and the downloads.
#include "core/api/PullProgress.h"
#include "core/models/Fmt.h"
#include "core/models/LayerTable.h"
#include "core/models/ModelCatalog.h"
#include "core/models/SpeedMeter.h"
#include "support/AppUnderTest.h"
#include "support/EngineUnderTest.h"
#include "support/Table.h"
#include "support/Waiting.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Limits = std::numeric_limits<qint64>;
using Phase = DownloadItem::Phase;
using Size = std::optional<qint64>;

namespace {

QStringList ids(const DownloadQueue &queue)
{
    QStringList list;
    for (const DownloadItem &item : queue.items())
        list.append(item.id);
    return list;
}

// A copy, so that nothing is compared with what has gone.
DownloadItem at(const DownloadQueue &queue, const QString &name)
{
    const DownloadItem *const item = queue.item(name);
    return item ? *item : DownloadItem();
}

} // namespace

class ModelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusals_data()
    {
        const auto row = table<QString, Size, Size, QString>("name", "known", "free", "refusal");
        const QString bad = u"Please type a model name without spaces, for example gemma3:4b."_s;
        const QString space = u"Not enough free disk space: this needs about %1 (the model plus 2 GB spare) "
                              "and only %2 is free."_s;
        row("blank", u" \t\n"_s, {}, {}, bad);
        row("space inside", u"a b"_s, {}, {}, bad);
        row("too big", u"m"_s, 1'400'000'000, 3'399'999'999, space.arg(u"3.4 GB"_s, u"3.4 GB"_s));
        row("fits", u"m"_s, 1'400'000'000, 3'400'000'000, {});
        row("size unknown", u"m"_s, {}, 1'000'000'000, space.arg(u"2 GB"_s, u"1 GB"_s));
    }
    void refusals()
    {
        QFETCH(const QString, name);
        QFETCH(const Size, known);
        QFETCH(const Size, free);
        const Sandbox sandbox;
        Size answer = std::nullopt;
        QString refusal;
        DownloadQueue queue({.freeBytes = [&answer](const QString &) { return answer; }});
        queue.onMessage = [&refusal](const QString &message) { refusal = message; };
        queue.enqueue(u"m"_s, known);
        QTRY_COMPARE(at(queue, u"m"_s).phase, Phase(Phase::failed, u"The engine is not available."_s));

        // What was to be resumed and is refused stays as it was.
        const QList<DownloadItem> before = queue.items();
        answer = free;
        queue.enqueue(name, known);
        QTEST(refusal, "refusal");
        QCOMPARE(queue.items() == before, !refusal.isEmpty());
    }

    void onePullAtATimeInOrder()
    {
        AppUnderTest app;
        DownloadQueue &queue = app->queue();
        queue.enqueue(u"qwen3:0.6b"_s, {});
        queue.enqueue(u" Phi3.5 "_s, 2'200'000'000);
        queue.enqueue(u"QWEN3:0.6b"_s, {});
        queue.enqueue(u"phi3.5:latest"_s, {});
        QCOMPARE(ids(queue), QStringList({u"qwen3:0.6b"_s, u"phi3.5:latest"_s}));
        QCOMPARE(at(queue, u"phi3.5"_s).phase.kind, Phase::queued);
        QTRY_VERIFY(queue.items().isEmpty());
        const QJsonArray pulls = app.demo.requests(u"/api/pull"_s);
        QCOMPARE(pulls.size(), 2);
        QVERIFY(pulls[1]["body"_L1].toString().contains("\"Phi3.5\""_L1));
        QVERIFY(pulls[1]["startedMs"_L1].toDouble() >= pulls[0]["endedMs"_L1].toDouble());
    }

    void needsAnEngineThatRuns()
    {
        const Phase notRunning(Phase::failed,
                               u"The local engine isn't running. Open the Server tab to see why."_s);
        EngineUnderTest engine;
        engine.defaults().remove(u"manualEnginePath"_s);
        engine.remake();
        DownloadQueue queue({.freeBytes = [](const QString &) { return Size(); }});
        queue.setEngine(engine.get());
        queue.enqueue(u"m"_s, {});
        QTRY_COMPARE(at(queue, u"m"_s).phase, notRunning);

        // A start that is under way is waited for; with an engine that is stopped meanwhile the pull fails.
        engine.sandbox.chooseEngine();
        Task<> start = engine->start();
        queue.enqueue(u"m"_s, {});
        QTRY_VERIFY_WITH_TIMEOUT(at(queue, u"m"_s).total > 0, 30'000);
        engine->stop();
        QTRY_COMPARE(at(queue, u"m"_s).phase.kind, Phase::failed);
        waitFor(std::move(start));

        // A stopped one is started for the next.
        const QStringList names{u"first"_s, u"second"_s};
        for (const QString &name : names)
            queue.enqueue(name, {});
        for (const QString &name : names) {
            QTRY_VERIFY_WITH_TIMEOUT(at(queue, name).total > 0, 30'000);
            engine->stop();
            QTRY_COMPARE(at(queue, name).phase.kind, Phase::failed);
            QCOMPARE(at(queue, name).speed, 0.0);
        }
    }

    void cancelAndResume()
    {
        AppUnderTest app;
        DownloadQueue &queue = app->queue();
        QList<DownloadItem> shown;
        connect(&queue, &DownloadQueue::itemsChanged, this, [&] { shown = queue.items(); });
        app.setPace(R"({"pullMs":10000})");
        for (const QString &name : {u"first"_s, u"second"_s, u"third"_s})
            queue.enqueue(name, {});
        QTRY_VERIFY(at(queue, u"first"_s).total > 0);
        queue.cancel(u"second"_s);
        queue.cancel(u"FIRST"_s);
        QTRY_COMPARE(at(queue, u"first"_s).phase.kind, Phase::cancelled);
        QCOMPARE(at(queue, u"third"_s).phase.kind, Phase::running);
        QTRY_COMPARE(app.demo.requests(u"/api/pull"_s)[0]["state"_L1].toString(), u"cut"_s);

        queue.enqueue(u"first"_s, {});
        QCOMPARE(ids(queue), QStringList({u"third:latest"_s, u"first:latest"_s}));
        app.setPace(R"({"pullMs":2000})");
        queue.cancel(u"third"_s);
        // Off the list, a pull goes on, and the next one waits for it.
        QTRY_VERIFY(at(queue, u"first"_s).total > 0);
        app.setPace(R"({"pullMs":0})");
        queue.dismiss(u"first"_s);
        queue.enqueue(u"second"_s, {});
        QCOMPARE(at(queue, u"second"_s).phase.kind, Phase::queued);
        QTRY_VERIFY(app->isInstalled(u"first"_s) && app->isInstalled(u"second"_s));
        QTRY_COMPARE(ids(queue), QStringList(u"third:latest"_s));
        QCOMPARE(shown, queue.items());
        queue.cancel(u"third"_s);
        QVERIFY(shown.isEmpty() && queue.items().isEmpty());
    }

    void waitsForDataAloud()
    {
        const QString name = u"phi3.5"_s;
        AppUnderTest app;
        DownloadQueue queue({.freeBytes = [](const QString &) { return Size(); }, .patience = 50ms});
        queue.setEngine(&app->engine());
        app.demo.setFaults(u"pull:stall"_s);
        queue.enqueue(name, {});
        QTRY_VERIFY(at(queue, name).stalled && at(queue, name).total > 0);
        QVERIFY(Fmt::progress(at(queue, name)).endsWith(u" · Waiting for data…"_s));
        queue.cancel(name);
        QTRY_COMPARE(at(queue, name).phase.kind, Phase::cancelled);
        QVERIFY(!at(queue, name).stalled);

        // Once all is there the engine is at work, however long that takes.
        app.demo.setFaults({});
        app.addModel(name);
        app.setPace(R"({"pullMs":4000})");
        QList<bool> whileVerifying;
        connect(&queue, &DownloadQueue::itemsChanged, this, [&] {
            if (at(queue, name).status.startsWith("verifying"_L1))
                whileVerifying.append(at(queue, name).stalled);
        });
        queue.enqueue(name, {});
        QTRY_VERIFY(queue.items().isEmpty());
        QCOMPARE(whileVerifying, {false});
    }

    void bestPick()
    {
        constexpr quint64 gibibyte = quint64(1) << 30;
        const auto pick = [](quint64 memory) { return ModelCatalog::bestPick(memory).name; };
        QCOMPARE(pick(gibibyte), u"qwen3:0.6b"_s);     // nothing fits
        QCOMPARE(pick(4 * gibibyte), u"qwen3:1.7b"_s); // the preferred one is tight
        QCOMPARE(pick(12 * gibibyte - 1), u"qwen3:4b"_s);
        QCOMPARE(pick(12 * gibibyte), u"qwen2.5:7b"_s);
        QCOMPARE(pick(32 * gibibyte), u"llama3.1:8b"_s);
        QCOMPARE(ModelCatalog::fit(349, 1000), Fit::good);
        QCOMPARE(ModelCatalog::fit(599, 1000), Fit::tight);
        QCOMPARE(ModelCatalog::fit(3, 5), Fit::tooBig);
    }

    void catalogue()
    {
        QCOMPARE(ModelCatalog::normalized(u"QWEN3:4B"_s), u"qwen3:4b"_s);
        QCOMPARE(ModelCatalog::normalized(u" \t\u00A0\u3000Phi3.5 "_s), u"phi3.5:latest"_s);
        // The labels are written by hand beside the sizes they stand for.
        for (const CatalogModel &model : ModelCatalog::models()) {
            const double size = static_cast<double>(model.sizeBytes);
            const QString inGigabytes = u"%1 GB"_s.arg(size / 1e9, 0, 'f', 1);
            QCOMPARE(model.sizeLabel, size < 1e9 ? u"%1 MB"_s.arg(size / 1e6) : inGigabytes);
        }
    }

    void layersAreSummed()
    {
        LayerTable layers;
        const auto report = [&layers](const std::optional<QString> &layer, qint64 total, qint64 completed) {
            layers.update({.status = {}, .digest = layer, .total = total, .completed = completed});
            return std::pair(layers.total(), layers.completed());
        };
        report(u"a"_s, 100, 20);
        QCOMPARE(layers.received(), 0); // what was there before
        report(u"b"_s, 300, 0);
        QCOMPARE(report(u"a"_s, 100, 50), std::pair(400LL, 50LL));
        QCOMPARE(report(u"a"_s, 0, 7), std::pair(400LL, 50LL));
        QCOMPARE(report({}, 9, 9), std::pair(400LL, 50LL));
        QCOMPARE(layers.received(), 30);
        QCOMPARE(report(u"a"_s, 100, 30), std::pair(400LL, 30LL));
        QCOMPARE(layers.received(), 10);
        QCOMPARE(report(QString(1'000'000, u'd'), 9, 9), std::pair(400LL, 30LL)); // no digest

        for (int layer = 0; layer < LayerTable::mostLayers + 9; ++layer)
            report(QString::number(layer), Limits::max(), Limits::min());
        constexpr qint64 most = (LayerTable::mostLayers - 2) * LayerTable::mostBytes;
        QCOMPARE(report({}, 0, 0), std::pair(most + 400, 30 - most));
    }

    void speedIsSmoothed()
    {
        auto now = std::chrono::steady_clock::now();
        SpeedMeter meter([&now] { return now; });
        const auto speedAfter = [&](std::chrono::milliseconds pause, qint64 bytes) {
            now += pause;
            meter.update(bytes);
            return meter.speed();
        };
        QCOMPARE(speedAfter(499ms, 1'000), 0.0);
        QCOMPARE(speedAfter(1ms, 1'000), 2'000.0);
        QCOMPARE(speedAfter(2s, 9'000), 0.3 * 4'000 + 0.7 * 2'000);
    }

    void lines()
    {
        QCOMPARE(Fmt::eta(59.9), u"59 s left"_s);
        QCOMPARE(Fmt::eta(60), u"1 min left"_s);
        QCOMPARE(Fmt::eta(5400), u"1.5 h left"_s);
        const auto line = [](qint64 completed, qint64 total, double speed) {
            return Fmt::progress(
                {.id = {}, .pullName = {}, .total = total, .completed = completed, .speed = speed});
        };
        QCOMPARE(line(1'000'000'000, 2'500'000'000, 12'345'678),
                 u"40% · 1 GB of 2.5 GB · 12.3 MB/s · 2 min left"_s);
        QCOMPARE(line(1, 2, 0.5), u"50% · 1 byte of 2 bytes · Zero KB/s"_s);
        QCOMPARE(line(500, 400, 9), u"100% · 500 bytes of 400 bytes · 9 bytes/s"_s);
        QCOMPARE(line(0, 0, -5), u"0% · Zero KB of Zero KB"_s);
        QCOMPARE(line(0, 7'128'000, 20), u"0% · Zero KB of 7.1 MB · 20 bytes/s · 99.0 h left"_s);
        QCOMPARE(line(0, 7'128'001, 20), u"0% · Zero KB of 7.1 MB · 20 bytes/s"_s);
        QCOMPARE(line(Limits::min(), 1, std::numeric_limits<double>::infinity()),
                 u"-9223372036854775808% · -9.22 EB of 1 byte · 9.22 EB/s · 0 s left"_s);
    }
};

QTEST_GUILESS_MAIN(ModelsTest)
#include "tst_models.moc"
