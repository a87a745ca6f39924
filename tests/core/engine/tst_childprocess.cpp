#include "core/engine/ChildProcess.h"
#include "core/engine/ChildProcessHolder.h"
#include "core/engine/RunProcess.h"
#include "platform/error/SystemError.h"
#include "support/ChildRoles.h"
#include "support/Lifeline.h"
#include "support/RunningChild.h"
#include "support/Table.h"
#include "support/Waiting.h"

#include <QProcess>

#include <csignal>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

Task<ProcessResult> runScript(QString script, qint64 keptOutput = std::numeric_limits<qint64>::max())
{
    return runProcess(u"/bin/sh"_s, {u"-c"_s, script}, {}, keptOutput);
}

ChildProcess::Command ourselves(const char *role, const QString &pipe)
{
    return {QCoreApplication::applicationFilePath(), {QString::fromLatin1(role), pipe}, {}};
}

} // namespace

class ChildProcessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QTRY_VERIFY(hasNoChildren()); }

    void tellsOutputAndStatus_data()
    {
        const auto row = table<QString, int, QByteArray>("script", "status", "output");
        row("both streams", u"printf a; printf b >&2; exit 3"_s, 3, "ab");
        row("more than a pipe holds", u"head -c 300000 /dev/zero"_s, 0, QByteArray(300'000, '\0'));
        row("arguments as they are", u"printf '%s|' \"$@\""_s, 0, "$HOME|a b|\"*|");
    }
    void tellsOutputAndStatus()
    {
        QFETCH(const QString, script);
        const RunningChild child(script, {u"$HOME"_s, u"a b"_s, u"\"*"_s});
        QTRY_VERIFY(child.ended());
        QTEST(child.status(), "status");
        QTEST(child.output(), "output");
        QVERIFY(!child.process()->isRunning());
    }

    void outputComesAtOnceAndOnlyTheChildIsAskedToEnd()
    {
        const RunningChild child(u"trap 'echo leader' TERM; "
                                 "(trap 'echo other' TERM; echo up; while :; do sleep 1; done) & "
                                 "while :; do wait; done"_s);
        QTRY_COMPARE(child.output(), "up\n"_ba);
        ChildProcessHolder holder;
        holder.set(child.process());
        holder.clear();
        holder.terminate();
        holder.set(child.process());
        std::thread([&holder] { holder.terminate(); }).join();
        QTRY_COMPARE(child.output(), "up\nleader\n"_ba);
        holder.terminate();
        child.process()->kill();
        QTRY_VERIFY(child.ended());
        QCOMPARE(child.status(), SIGKILL);
        QCOMPARE(child.output(), "up\nleader\n"_ba);
    }

    void whatItLeavesInItsGroupIsEnded()
    {
        Lifeline left;
        const RunningChild child(Lifeline::script() + u"trap '' TERM; sleep 60 & exit 4"_s, {left.path()});
        QTRY_VERIFY(child.ended());
        QCOMPARE(child.status(), 4);
        QTRY_VERIFY(left.isReleased());
    }

    void aProcessOutsideItsGroupDelaysNothing()
    {
        Lifeline left;
        const RunningChild child(ourselves(ChildRoles::leaveSomeone, left.path()));
        QTRY_VERIFY(child.ended());
        const int id = child.output().trimmed().toInt();
        QVERIFY(id > 1);
#ifdef Q_OS_LINUX // where it is ended too
        QVERIFY(::kill(id, 0) != 0);
#else
        QTRY_VERIFY(left.wasHeld() && !left.isReleased());
        ::kill(id, SIGKILL);
        QTRY_VERIFY(left.isReleased());
#endif
    }

    void endsWithItsParent_data()
    {
        const auto row = table<QString>("script");
        row("asked", u"exec sleep 60"_s);
        row("deaf, and elsewhere in two generations",
            u"trap '' TERM; setsid sh -c 'sleep 60 & sleep 60' & sleep 60"_s);
    }
    void endsWithItsParent()
    {
#ifndef Q_OS_LINUX
        QSKIP("Nothing on this system tells a child of its parent's death");
#endif
        QFETCH(const QString, script);
        Lifeline orphan;
        // Not by this program's own means, which would end what is below the parent themselves.
        QProcess parent;
        parent.start(QCoreApplication::applicationFilePath(),
                     {QString::fromLatin1(ChildRoles::parent), orphan.path(), script});
        QTRY_VERIFY(orphan.wasHeld());
        parent.kill();
        QVERIFY(parent.waitForFinished());
        QTRY_VERIFY_WITH_TIMEOUT(orphan.isReleased(), 30'000);
    }

    void terminatingAtTheMomentOfTheEnd()
    {
        for (int round = 0; round < 30; ++round) {
            ChildProcessHolder holder;
            const RunningChild child(u"exit 0"_s);
            holder.set(child.process());
            const auto end = [&holder, process = child.process()] {
                holder.terminate();
                while (process->isRunning())
                    process->terminate();
            };
            std::thread first(end);
            std::thread second(end);
            first.join();
            second.join();
            QTRY_VERIFY(child.ended());
            child.process()->terminate();
        }
    }

    void aDroppedHandleLeavesTheChildAlone()
    {
        RunningChild child(u"sleep 0.1; echo done"_s);
        child.dropHandle();
        QTRY_VERIFY(child.ended());
        QCOMPARE(child.output(), "done\n"_ba);
    }

    // Signals that this program was started with, and descriptors that others left open in it.
    void inheritsNeitherSignalsNorDescriptors()
    {
        std::signal(SIGPIPE, SIG_IGN);
        std::signal(SIGCHLD, SIG_IGN);
        const RunningChild child(u"kill -PIPE $$; exit 0"_s);
        std::signal(SIGPIPE, SIG_DFL);
        QTRY_VERIFY(child.ended());
        QCOMPARE(child.status(), SIGPIPE);
#ifdef Q_OS_LINUX
        const int open = ::open("/dev/null", O_RDONLY);
        const RunningChild other(u"ls /dev/fd"_s); // which opens one itself
        ::close(open);
        QTRY_VERIFY(other.ended());
        QCOMPARE(other.output(), "0\n1\n2\n3\n"_ba);
#endif
    }

    void runsToTheEnd()
    {
        // One character in two writes, and a byte that is none.
        auto whole = runScript(u"printf '\\303'; sleep 0.05; printf '\\251 a\\377z' >&2; exit 3"_s);
        QCOMPARE(::waitFor(std::move(whole)), (ProcessResult{3, u"é a\uFFFDz"_s}));
        auto cut = runScript(u"head -c 300000 /dev/zero | tr '\\0' x; printf end"_s, 5);
        QCOMPARE(::waitFor(std::move(cut)), (ProcessResult{0, u"xxend"_s}));
        auto exact = runProcess(u"/usr/bin/env"_s, {}, Environment{{"A", "1"}, {"B", "two words=\xFF"}});
        QCOMPARE(::waitFor(std::move(exact)).output, u"A=1\nB=two words=\uFFFD\n"_s);
        QVERIFY_THROWS_EXCEPTION(SystemError, ::waitFor(runProcess(u"/no/such/program"_s, {})));
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (const std::optional<int> played = ChildRoles::play(application))
        return *played;
    ChildProcessTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_childprocess.moc"
