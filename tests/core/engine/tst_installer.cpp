#include "core/engine/AppPaths.h"
#include "core/engine/EngineManager.h"
#include "core/engine/InstallSteps.h"
#include "core/engine/ReleaseRecord.h"
#include "core/engine/RunProcess.h"
#include "platform/files/ExchangePaths.h"
#include "support/FragileFolder.h"
#include "support/InstallerUnderTest.h"
#include "support/RunningChild.h"
#include "support/Table.h"

#include <QDir>
#include <QSignalSpy>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Server = ReleaseServer;
using Answer = ReleaseServer::Answer;

Q_DECLARE_METATYPE(ReleaseServer::Answer)
Q_DECLARE_METATYPE(TarArchive)

class InstallerTest : public QObject
{
    Q_OBJECT

    std::optional<InstallerUnderTest> m_installer;

private Q_SLOTS:
    void init() { m_installer.emplace(); }
    void cleanup()
    {
        m_installer.reset();
        QVERIFY(hasNoChildren());
    }

    void succeeds()
    {
        const QSignalSpy done(m_installer->get(), &EngineInstaller::installed);
        QCOMPARE(m_installer->installFrom(m_installer->release()), QString());
        QCOMPARE(done, (QList<QVariantList>{{m_installer->installedProgram(), u"version --version"_s}}));
        QCOMPARE(m_installer->modeOf(m_installer->installedProgram()), 0755u);
        QVERIFY(!m_installer->hasOldEngine() && m_installer->isTidy());
        QVERIFY(m_installer->lines.takeAt(2).startsWith(u"100% \u00B7 "_s));
        QCOMPARE(m_installer->lines.join(u' '),
                 u"Looking up the latest Ollama… Starting download… Unpacking… Installing… "
                 "Checking that it runs…"_s);
        const Server &server = m_installer->server;
        QCOMPARE(server.header(0, "Accept"), "application/vnd.github+json"_ba);
        for (qsizetype request = 0; request < server.requests().size(); ++request)
            QVERIFY(server.header(request, "User-Agent") == "Tarnwick" &&
                    server.header(request, "Accept-Language") == "en" &&
                    server.header(request, "Accept-Encoding") == "identity");
    }

    void failures_data()
    {
        // "SERVER" stands for this server's address
        const auto row = table<Answer, Answer, QString>("lookup", "download", "sentence");
        const auto record = [](const char *size, const char *address = "SERVER/archive",
                               const QByteArray &digest = {}) {
            return Answer{.body = Server::record(address, size, digest)};
        };
        const QString limited = u"GitHub is limiting requests right now. Try again in a few minutes, or "
                                "choose Ollama manually."_s;
        const QString refused =
            u"GitHub answered with error %1. Try again later, or choose Ollama manually."_s;
        const QString space = u"Not enough free disk space to install Ollama (needs about %1)."_s;
        const QString incomplete = u"The download is incomplete (%1 of %2). Please try again."_s;
        row("403", {.status = 403}, {}, limited);
        row("429", {.status = 429}, {}, limited);
        row("503", {.status = 503}, {}, refused.arg(503));
        row("no JSON", {.body = "<html>"}, {}, u"GitHub's answer could not be read ("_s);
        row("no asset", {.body = "{}"}, {}, InstallerOptions().missingAsset);
        row("huge record", {.body = record("1").body + QByteArray(50'000'000, ' ')}, {.status = 404},
            u"The download server answered with error 404."_s);
        row("too big", record("1000000000000000000"), {}, space.arg(u"3 EB"_s));
        row("far too big", record("9000000000000000000"), {}, space.arg(u"9.22 EB"_s));
        row("not secure", record("1", "http://127.0.0.1:1/"), {},
            u"The address does not use a secure connection."_s);
        row("insecure redirect", record("1"), {.status = 302, .header = "Location: http://127.0.0.1:1/"},
            u"Insecure redirect"_s);
        row("short", record("200"), {.body = "xxx"}, incomplete.arg(u"3 bytes"_s, u"200 bytes"_s));
        row("empty", record(""), {}, incomplete.arg(u"Zero KB"_s, u"Zero KB"_s));
        row("altered", record("2", "SERVER/archive", Server::digestOf("ab")), {.body = "ac"},
            u"The download does not match its published checksum. Please try again."_s);
        row("no archive", record("", "SERVER/archive", Server::digestOf("x")), {.body = "x"},
            u"Unpacking failed: zstd: "_s);
        row("no program", record(""), {.body = TarArchive().addFile("bin/Ollama", "x").compressed()},
            u"The download did not contain the ollama program."_s);
    }
    void failures()
    {
        QFETCH(const Answer, lookup);
        QFETCH(const Answer, download);
        QFETCH(const QString, sentence);
        const QString told = m_installer->installFrom(lookup, download);
        QVERIFY2(told.startsWith(sentence) && told == told.trimmed(), qUtf8Printable(told));
        QVERIFY(m_installer->isUntouched());
        // The next one begins without the old sentence.
        QCOMPARE(m_installer->installFrom(m_installer->release()), QString());
    }

    void silentServers()
    {
        InstallerOptions options = m_installer->server.options();
        options.lookupTimeout = options.downloadTimeout = 100ms;
        options.stallPatience = 1ms;
        for (const QString &silent : {Server::recordPath, Server::archivePath}) {
            m_installer->remake(options);
            m_installer->hold(silent);
            QCOMPARE(m_installer->install(), u"The request timed out. Please try again."_s);
            QVERIFY(m_installer->lines.last().endsWith(u" \u00B7 Waiting for data…"_s));
            QVERIFY(m_installer->isUntouched());
        }
    }

    void aSilentTool()
    {
        InstallerOptions options = m_installer->server.options();
        options.archiveTool = m_installer->sandbox.path(u"tool"_s);
        m_installer->put(u"tool"_s, "#!/bin/sh\nexit 3\n");
        m_installer->remake(options);
        QCOMPARE(m_installer->installFrom(m_installer->release()),
                 u"Unpacking failed: the archive tool ended with status 3."_s);
    }

    void strangersAreNotTrusted()
    {
        m_installer->server.distrust();
        QVERIFY(m_installer->install().contains("certificate"_L1));
        QVERIFY(m_installer->server.requests().isEmpty());
    }

    // The first of the name that can be fetched, in a record that is read as a whole.
    void findsTheAsset()
    {
        const QByteArray named = "{\"name\":\"a\",\"browser_download_url\":\"";
        const QByteArray rest = "https://x/a\",\"size\":5000000000,\"digest\":\"";
        const QByteArray whole = named + rest + "sha256:" + QByteArray(64, 'A') + "\"}";
        const auto found = [](const QByteArray &assets) {
            return assetNamed(u"a"_s, "{\"assets\":[" + assets + "]}");
        };
        QCOMPARE(found("{\"name\":\"a\"}," + whole),
                 std::optional(ReleaseAsset{QUrl(u"https://x/a"_s), 5'000'000'000, QByteArray(32, '\xaa')}));
        // One that it does not know is none.
        for (const QByteArray &digest : {"sha512:" + QByteArray(64, 'a'), "sha256:" + QByteArray(62, 'a'),
                                         "sha256:" + QByteArray(64, 'g')})
            QCOMPARE(found(named + rest + digest + "\"}")->sha256, QByteArray());
        QVERIFY(!found(named + "\"}") && !found(named + "https://x y/\"}"));
        QVERIFY(!found(QByteArray(whole).replace("\"a\"", "\"A\"")));
    }

    void showsTheDownload()
    {
        const auto shown = [](qint64 done, qint64 announced, qint64 recorded, double speed,
                              bool stalled = false) {
            const InstallStatus status = downloadStatus(done, announced, recorded, speed, stalled);
            return std::pair(status.text, status.fraction.value_or(-1));
        };
        QCOMPARE(shown(1'999, 4'000, 9, 0), std::pair(u"49% · 2 KB of 4 KB"_s, 1'999.0 / 4'000));
        QCOMPARE(shown(1, -1, 4, 2'500'000), std::pair(u"25% · 1 byte of 4 bytes · 2.5 MB/s"_s, 0.25));
        QCOMPARE(shown(1, -1, 4, 2'500'000, true).first, u"25% · 1 byte of 4 bytes · Waiting for data…"_s);
        QCOMPARE(shown(50, 0, 0, -1), std::pair(u"50 bytes of Zero KB"_s, -1.0));
    }

    void anEngineThatDoesNotRunIsRemoved()
    {
        QCOMPARE(m_installer->installFrom(m_installer->release("printf '%0200d' 7; exit 1")),
                 u"The program was found but does not run (%1)."_s.arg(QString(149, u'0') + u'7'));
        QVERIFY(!QFile::exists(AppPaths::engineDir()) && m_installer->isTidy());
    }

    void cancelling_data()
    {
        // The request without a whole answer, the line that shows when the user cancels, what is said then.
        const auto row = table<QString, QString, QString>("held", "line", "told");
        const QString cancelled = u"Cancelled."_s;
        row("lookup", Server::recordPath, {}, cancelled);
        row("download", Server::archivePath, u"% \u00B7 "_s, cancelled);
        row("between", {}, u"Starting download…"_s, u"Installation cancelled."_s);
        row("unpacking", {}, u"Unpacking…"_s, {});
        row("installing", {}, u"Installing…"_s, {});
        row("checking", {}, u"Checking that it runs…"_s, {});
    }
    void cancelling()
    {
        QFETCH(const QString, held);
        QFETCH(const QString, line);
        QFETCH(const QString, told);
        m_installer->hold(held);
        connect(m_installer->get(), &EngineInstaller::installChanged, this, [this, line] {
            if (m_installer->lines.size() > 1 && m_installer->lines.last().contains(line))
                (*m_installer)->installTask().requestStop();
        });
        (*m_installer)->startInstall();
        if (line.isEmpty()) {
            QTRY_VERIFY_WITH_TIMEOUT(!m_installer->server.requests().isEmpty(), 30'000);
            (*m_installer)->installTask().requestStop();
        }
        QTRY_VERIFY_WITH_TIMEOUT(!(*m_installer)->install(), 30'000);
        QCOMPARE(m_installer->sentence(), told);
        QVERIFY(m_installer->hasOldEngine() != told.isEmpty() && m_installer->isTidy());
    }

    // The check ends with the program and has found nothing wrong.
    void quittingKeepsTheNewEngine()
    {
        m_installer->server.publish(InstallerUnderTest::release("while :; do :; done").compressed());
        (*m_installer)->startInstall();
        QTRY_VERIFY_WITH_TIMEOUT(m_installer->lines.contains(u"Checking that it runs…"_s), 30'000);
        beginQuitting();
        endShortLivedChildren();
        QTRY_COMPARE_WITH_TIMEOUT(runningTasks(), 0, 30'000);
        resumeAfterQuitting();
        QVERIFY(QFile::exists(m_installer->installedProgram()) && m_installer->isTidy());
        const EngineManager next(m_installer->sandbox.defaults(), Sandbox::engineOptions());
        QCOMPARE(next.enginePath(), m_installer->installedProgram());
    }

    // So that no moment is without an engine.
    void theNewEngineTakesThePlaceOfTheOldInOneStep()
    {
        const QString unpacked = AppPaths::tempDir() + "/unpacked"_L1;
        m_installer->putAt(unpacked + "/ollama"_L1, "new");
        if (!exchangePaths(unpacked, AppPaths::engineDir()))
            QSKIP("This file system cannot exchange folders");
        QVERIFY(!m_installer->hasOldEngine() && !exchangePaths(unpacked, unpacked + u'x'));
        bool replaced = false;
        putEngineInPlace(unpacked, replaced);
        QVERIFY(replaced && m_installer->hasOldEngine());
        QCOMPARE(m_installer->contentOf(unpacked + "/ollama"_L1), "new"_ba);
    }

    void destroyedDuringTheDownload()
    {
        m_installer->hold(Server::archivePath);
        (*m_installer)->startInstall();
        QTRY_VERIFY_WITH_TIMEOUT(m_installer->lines.size() == 3, 30'000);
        m_installer->drop();
        QTRY_VERIFY_WITH_TIMEOUT(runningTasks() == 0, 30'000);
        QVERIFY(m_installer->isTidy());
    }

    void leftovers()
    {
        const QDir temporary(AppPaths::tempDir());
        m_installer->putAt(temporary.filePath(u"3f2504e0-4f89-41d3-9a0c-0305e82c3301/unpacked/x"_s), "x");
        m_installer->putAt(temporary.filePath(u"somebody's/file"_s), "x");
        m_installer->remake();
        QTRY_COMPARE(temporary.entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                     QStringList{u"somebody's"_s});
    }

    void theDiskIsFull()
    {
        const FragileFolder folder(AppPaths::tempDir(), FragileFolder::full);
        if (!folder.refusal().isEmpty())
            QSKIP(qUtf8Printable(folder.refusal()));
        const TarArchive large = m_installer->release().addFile("lib/zeros", QByteArray(4'000'000, '\0'));
        const Answer record{.body = Server::record("SERVER/archive", {})};
        const Answer endless{.body = QByteArray(65'536, 'x'), .times = 64};
        for (const Answer &download : {endless, Answer{.body = large.compressed()}}) {
            QCOMPARE(m_installer->installFrom(record, download),
                     u"Your disk is full. Free some space and try again."_s);
            QVERIFY(m_installer->isUntouched());
        }
    }

    void choices_data()
    {
        const auto row = table<QByteArray, QString>("program", "told");
        const QString broken = u"The program was found but does not run (%1)."_s;
        const QByteArray foreign = "\x7f" + "ELF\2\1\1"_ba + QByteArray(9, '\0') + "\2\1\xF3\xF3";
        row("silent", "#!/bin/sh\n", broken.arg(QString()));
        row("killed", "#!/bin/sh\necho on; kill -9 $$", broken.arg(u"on"_s));
        row("much", "#!/bin/sh\nhead -c 100000000 /dev/zero | tr '\\0' x; exit 1",
            broken.arg(QString(150, u'x')));
        row("other processor", foreign + QByteArray(44, '\1'), u"Exec format error"_s);
        row("not executable", "", u"Permission denied"_s);
        row("folder", QByteArray(), u"Permission denied"_s);
    }
    void choices()
    {
        QFETCH(const QByteArray, program);
        if (program.isNull())
            QDir().mkpath(m_installer->sandbox.path(u"chosen"_s));
        else
            m_installer->put(u"chosen"_s, program);
        m_installer->choose(u"chosen"_s);
        QTEST(m_installer->sentence(), "told");
        m_installer->put(u"good"_s, "#!/bin/sh\nprintf ' one\\n two '\n");
        const QSignalSpy chosen(m_installer->get(), &EngineInstaller::chosen);
        m_installer->choose(u"good"_s);
        QCOMPARE(chosen, (QList<QVariantList>{{m_installer->sandbox.path(u"good"_s), u"one\n two"_s}}));
        QCOMPARE(m_installer->sentence(), QString());
    }

    // Nor does one that never ends stand in the way of the next, or of quitting.
    void aChoiceThatNeverEnds()
    {
        m_installer->put(u"endless"_s, "#!/bin/sh\ntrap '' TERM; while :; do echo x; sleep 1; done");
        m_installer->put(u"good"_s, "#!/bin/sh\nhead -c 3000000 /dev/zero | tr '\\0' v");
        const QSignalSpy chosen(m_installer->get(), &EngineInstaller::chosen);
        m_installer->desktop.answer = m_installer->sandbox.path(u"endless"_s);
        (*m_installer)->chooseManually();
        m_installer->choose(u"good"_s);
        QCOMPARE(chosen.value(0).value(1).toString().size(), 1024 * 1024);
        beginQuitting();
        (*m_installer)->chooseManually();
        QCOMPARE(runningTasks(), 1);
        endShortLivedChildren();
        QTRY_COMPARE_WITH_TIMEOUT(runningTasks(), 0, 30'000);
        resumeAfterQuitting();
        QCOMPARE(chosen.size(), 1);
    }

    // Archives that try to reach out of the folder they are unpacked into.
    void nothingLeavesTheFolder_data()
    {
        using A = TarArchive;
        // "OUTSIDE" stands for a folder; of what is told, the beginning.
        const auto row = table<A, QString>("archive", "told");
        constexpr auto link = A::symbolicLink;
        const auto base = [] { return InstallerUnderTest::release(); };
        const QString failed = u"Unpacking failed: "_s;
        const QString leadsOut = failed + u"a link leads out of the archive: "_s;
        const QString either = u"?"_s;
        const QString noProgram = u"The download did not contain the ollama program."_s;

        row("absolute name", base().addFile("OUTSIDE/victim", "evil"), {});
        row("dots", base().addFile("../../../../outside/victim", "evil"), failed);
        row("through a link", base().add("l", link, "OUTSIDE").addFile("l/victim", "evil"), failed);
        row("hard link", base().add("h", A::hardLink, "OUTSIDE/victim").addFile("h", "evil"), failed);
        // Done right everywhere, but held for a failure by a tool that works on some file systems.
        row("folder in a link's place", base().add("l", link, "OUTSIDE").add("l", A::folder, {}, 0777),
            either);
        row("link in a folder's place", base().add("l", A::folder, {}, 0777).add("l", link, "OUTSIDE"),
            leadsOut + u"l"_s);

        row("link out", base().add("bin/l", link, "../../../x"), leadsOut + u"bin/l"_s);
        row("link by way of another", base().add("here", link, ".").add("l", link, "here/../x"),
            leadsOut + u"l"_s);
        row("link in a circle", base().add("l", link, "l"), leadsOut + u"l"_s);
        row("links that stay", base().add("lib/a", link, "../bin/./ollama").add("b", link, "lib/gone"), {});

        row("device", base().add("d", A::characterDevice), failed);
        row("pipe", base().add("p", A::namedPipe), failed + u"not a file, folder or link: p"_s);
        row("program outside", A().add("ollama", link, "OUTSIDE/victim"), noProgram);
        row("locked folders", base().add(".", A::folder, {}, 0).add("bin", A::folder, {}, 0555), {});
    }
    void nothingLeavesTheFolder()
    {
        QFETCH(const TarArchive, archive);
        QFETCH(const QString, told);
        const QString outside = m_installer->sandbox.path(u"outside"_s);
        const QString victim = outside + "/victim"_L1;
        m_installer->putAt(victim, "innocent");
        const mode_t modes[] = {m_installer->modeOf(outside), m_installer->modeOf(victim)};

        const QString sentence = m_installer->installFrom(archive.replaced("OUTSIDE", outside.toUtf8()));
        const bool refused = !sentence.isEmpty();
        QVERIFY2(told == "?"_L1 || (refused == !told.isEmpty() && sentence.startsWith(told)),
                 qUtf8Printable(sentence));
        QCOMPARE(QDir(outside).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"victim"_s});
        QCOMPARE(m_installer->contentOf(victim), "innocent"_ba);
        QVERIFY(m_installer->modeOf(outside) == modes[0] && m_installer->modeOf(victim) == modes[1]);
        QVERIFY(m_installer->hasOldEngine() == refused && m_installer->isTidy());
    }

    // Not even a superuser who has the archive tool told to. Nor does anybody's own decompressor count.
    void noRightsFromTheArchive()
    {
        const TarArchive archive = m_installer->release().addFile("lib/tool", "x", 06777);
        m_installer->server.publish(archive.compressed());
        m_installer->put(u"zstd"_s, "#!/bin/sh\nexit 1\n");
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(m_installer->sandbox.path({})) + ':' + path);
        qputenv("TAR_OPTIONS", "--same-permissions --same-owner --absolute-names");
        QCOMPARE(m_installer->install(), QString());
        qunsetenv("TAR_OPTIONS");
        qputenv("PATH", path);
        const QString tool = AppPaths::engineDir() + "/lib/tool"_L1;
        const mode_t mask = ::umask(0);
        ::umask(mask);
        QCOMPARE(m_installer->modeOf(tool), 0777 & ~mask);
        QCOMPARE(QFileInfo(tool).ownerId(), ::geteuid());
    }
};

QTEST_GUILESS_MAIN(InstallerTest)
#include "tst_installer.moc"
