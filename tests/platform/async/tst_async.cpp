#include "platform/async/Job.h"
#include "platform/async/Launch.h"
#include "platform/async/MainThread.h"
#include "platform/async/Sleep.h"
#include "platform/async/Stop.h"
#include "platform/async/Stream.h"
#include "platform/async/WorkerQueue.h"
#include "platform/error/SimpleError.h"
#include "support/Waiting.h"

#include <QTest>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Task<> failSoon(QString sentence)
{
    co_await sleepFor(1ms);
    throw SimpleError(sentence);
}

Task<> sleepUntilStopped(StopToken stop, std::shared_ptr<bool> ended)
{
    co_await sleepFor(10min, stop);
    *ended = stop.stopRequested();
}

Task<QList<int>> collect(std::shared_ptr<Stream<int>> stream)
{
    QList<int> all;
    while (const auto value = co_await stream->next())
        all.append(*value);
    co_return all;
}

} // namespace

class AsyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { resumeAfterQuitting(); }

    void stopReachesCallbacksAndChildren()
    {
        const StopSource parent;
        const StopSource child(parent.token());
        int called = 0;
        const StopCallback early(child.token(), [&] { ++called; });
        {
            const StopCallback takenBack(child.token(), [&] { called += 100; });
        }
        QVERIFY(!child.stopRequested());
        parent.requestStop();
        parent.requestStop();
        const StopCallback late(child.token(), [&] { ++called; });
        QCOMPARE(called, 2);
        QVERIFY(child.stopRequested() && StopSource(parent.token()).stopRequested());
        QVERIFY(!StopToken().stopRequested());

        // One may take back another that comes behind it.
        const StopSource source;
        auto second = std::make_unique<StopCallback>(StopToken(), [] {});
        const StopCallback first(source.token(), [&] { second.reset(); });
        second = std::make_unique<StopCallback>(source.token(), [&] { called += 100; });
        source.requestStop();
        QCOMPARE(called, 2);
    }

    void postedWorkKeepsItsOrderAcrossThreads()
    {
        QList<int> order;
        std::thread thread([&order] {
            for (int i = 0; i < 1000; ++i)
                postToMain([&order, i] { order.append(i); });
        });
        QTRY_COMPARE(order.size(), 1000);
        thread.join();
        QVERIFY(std::is_sorted(order.cbegin(), order.cend()));
    }

    void workersFinishWhatWasQueued()
    {
        WorkerQueue queue(2);
        const auto main = std::this_thread::get_id();
        QVERIFY(::waitFor(queue.run([main] { return std::this_thread::get_id() != main; })));
        QVERIFY_THROWS_EXCEPTION(SimpleError,
                                 ::waitFor(queue.run([]() -> int { throw SimpleError(u"broken"_s); })));

        // Its end waits for what was queued.
        std::atomic<int> done = 0;
        auto ending = std::make_unique<WorkerQueue>(3);
        for (int i = 0; i < 500; ++i)
            ending->post([&done] { ++done; });
        ending.reset();
        QCOMPARE(done.load(), 500);
    }

    void streamsKeepOrderAndEndBehindTheirRecords()
    {
        constexpr int count = 100'000; // in one turn
        const auto stream = std::make_shared<Stream<int>>();
        auto task = collect(stream);
        for (int i = 0; i < count; ++i)
            stream->source().push(i);
        stream->source().finish();
        stream->source().push(count);
        const QList<int> all = ::waitFor(std::move(task));
        QCOMPARE(all.size(), count);
        QVERIFY(std::is_sorted(all.cbegin(), all.cend()));
    }

    void droppingAStreamStopsItsProducer()
    {
        auto stream = std::make_unique<Stream<int>>();
        const auto source = stream->source();
        const StopToken token = stream->producerToken();
        QVERIFY(!token.stopRequested());
        stream.reset();
        QVERIFY(token.stopRequested());
        source.push(1);
        source.finish();
    }

    void launchedTasksAreCountedUntilQuitting()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"nobody handled: \"lost\""_s));
        QVERIFY(launch([] { return failSoon(u"lost"_s); }));
        QCOMPARE(runningTasks(), 1);
        QVERIFY(::waitFor(allTasksEnded(10s)) && runningTasks() == 0);

        const auto ended = std::make_shared<bool>(false);
        const Job job([ended](StopToken stop) { return sleepUntilStopped(stop, ended); });
        QVERIFY(!::waitFor(allTasksEnded(1ms)));
        beginQuitting();
        QVERIFY(::waitFor(allTasksEnded(10s)) && *ended);
        QVERIFY(!launch([] { return sleepFor(0ms); }));
        Job().requestStop();
    }
};

QTEST_GUILESS_MAIN(AsyncTest)
#include "tst_async.moc"
