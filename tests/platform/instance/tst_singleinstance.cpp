#include "platform/instance/SingleInstance.h"
#include "platform/instance/UserSocket.h"
#include "support/Table.h"
#include "support/TestFolder.h"

#include <QLocalSocket>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using Outcome = SingleInstance::Claim::Outcome;

const LaunchRequest newChat{LaunchRequest::Wish::newChat, {"kwin-42", "host-1_TIME4711"}};

// In another thread, so that this one's program can answer.
Outcome launch(const QString &folder, const LaunchRequest &request = {})
{
    Outcome outcome = Outcome::first;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { outcome = SingleInstance(folder).claim(request).outcome; }));
    thread->start();
    while (!QTest::qWaitFor([&] { return thread->isFinished(); })) {
    }
    thread->wait();
    return outcome;
}

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

    std::optional<TestFolder> m_folder;

    QString socketIn(const QString &folder) const
    {
        const QStringList names =
            QDir(m_folder->filePath(folder)).entryList({u"tarnwick-*"_s}, QDir::System | QDir::Files);
        return names.size() == 1 ? m_folder->filePath(folder) + u'/' + names.first() : QString();
    }

private Q_SLOTS:
    void init()
    {
        m_folder.emplace();
        QDir(m_folder->path()).mkdir(u"runtime"_s);
        ::chmod(QFile::encodeName(m_folder->filePath(u"runtime"_s)).constData(), 0700);
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder->filePath(u"runtime"_s)));
    }

    void secondLaunchHandsOverAndTouchesNothing()
    {
        SingleInstance first(m_folder->filePath(u"made/later"_s));
        QCOMPARE(first.claim().outcome, Outcome::first);
        QCOMPARE(m_folder->modeOf(u"made/later/instance.lock"_s), 0600);
        const QSignalSpy requests(&first, &SingleInstance::requested);
        QDir profile(m_folder->filePath(u"made/later"_s), {}, QDir::Name, QDir::AllEntries | QDir::Hidden);
        const QStringList before = profile.entryList();
        // The same folder under another spelling is the same profile.
        QCOMPARE(launch(m_folder->filePath(u"made/./later/"_s), newChat), Outcome::handedOver);
        QCOMPARE(requests.first().first().value<LaunchRequest>(), newChat);
        profile.refresh();
        QCOMPARE(profile.entryList(), before);
        QCOMPARE(launch(m_folder->filePath(u"other"_s)), Outcome::first);
        QVERIFY(QFile::link(m_folder->path(), m_folder->filePath(u"link"_s)));
        QCOMPARE(launch(m_folder->filePath(u"link/made/later"_s)), Outcome::handedOver);
        QVERIFY(QFile::remove(m_folder->filePath(u"made/later/instance.lock"_s)));
        QCOMPARE(launch(m_folder->filePath(u"made/later"_s)), Outcome::handedOver);
        QCOMPARE(requests.size(), 3);
    }

    void meetsWhereOthersCannotGo_data()
    {
        const auto row = table<QString, int, QString, QString>("profile", "mode", "later", "place");
        const QString deep = u"profile/"_s + QString(200, u'x');
        row("the system's folder", u"profile"_s, 0700, u"runtime"_s, u"runtime"_s);
        row("one that is open to others", u"profile"_s, 0770, u"runtime"_s, u"profile"_s);
        row("one that everybody may read", u"profile"_s, 0755, {}, u"profile"_s);
        row("a later launch knows none", u"profile"_s, 0700, {}, u"runtime"_s);
#ifdef Q_OS_LINUX
        row("a long path", deep, 0770, {}, deep);
#endif
    }

    void meetsWhereOthersCannotGo()
    {
#ifdef Q_OS_MACOS
        QSKIP("the system's folder cannot be changed here");
#endif
        QFETCH(const QString, profile);
        QFETCH(const int, mode);
        QFETCH(const QString, later);
        QFETCH(const QString, place);
        ::chmod(qgetenv("XDG_RUNTIME_DIR").constData(), mode_t(mode));
        SingleInstance first(m_folder->filePath(profile));
        QCOMPARE(first.claim().outcome, Outcome::first);
        ::chmod(qgetenv("XDG_RUNTIME_DIR").constData(), 0700);
        struct stat facts = {};
        QCOMPARE(::lstat(QFile::encodeName(socketIn(place)).constData(), &facts), 0);
        QCOMPARE(facts.st_mode & 0777U, 0600U);
        qputenv("XDG_RUNTIME_DIR", later.isEmpty() ? "" : qgetenv("XDG_RUNTIME_DIR"));
        QCOMPARE(launch(m_folder->filePath(profile)), Outcome::handedOver);
    }

    void whateverStandsInTheLocksPlace_data()
    {
        const auto row = table<QByteArray, Outcome>("script", "outcome");
        row("nothing in it", ": > instance.lock", Outcome::first);
        row("garbage", "head -c 100000 /dev/zero > instance.lock", Outcome::first);
        row("another's traces", "printf '1\\n/nowhere/tarnwick-1.socket' > instance.lock", Outcome::first);
        row("a folder", "mkdir instance.lock", Outcome::blocked);
        row("a pipe", "mkfifo instance.lock", Outcome::blocked);
        row("a link to nothing", "ln -s nothing instance.lock", Outcome::blocked);
        row("a link to a pipe", "mkfifo pipe; ln -s pipe instance.lock", Outcome::blocked);
        row("a file with a second name", "echo kept > file; ln file instance.lock", Outcome::blocked);
    }

    void whateverStandsInTheLocksPlace()
    {
        QFETCH(const QByteArray, script);
        QFETCH(const Outcome, outcome);
        const QByteArray folder = QFile::encodeName(m_folder->path());
        QCOMPARE(std::system(("cd '" + folder + "' && " + script).constData()), 0);
        QCOMPARE(launch(m_folder->path()), outcome);
        QVERIFY(!QFile::exists(m_folder->filePath(u"nothing"_s)));
        if (outcome == Outcome::first)
            QCOMPARE(m_folder->modeOf(u"instance.lock"_s), 0600);
    }

    void anotherUserIsNotBelieved()
    {
        if (::geteuid() != 0)
            QSKIP("only the superuser can act as another user");
        constexpr uid_t nobody = 65534;
        ::chmod(QFile::encodeName(m_folder->path()).constData(), 0777);
        qputenv("XDG_RUNTIME_DIR", "");
        QString path;
        {
            SingleInstance first(m_folder->path());
            QCOMPARE(first.claim().outcome, Outcome::first);
            path = socketIn({});
            const QSignalSpy requests(&first, &SingleInstance::requested);
            ::chmod(QFile::encodeName(path).constData(), 0666);
            QLocalSocket stranger;
            QCOMPARE(::seteuid(nobody), 0);
            stranger.connectToServer(path);
            QCOMPARE(::seteuid(0), 0);
            QCOMPARE(stranger.state(), QLocalSocket::ConnectedState);
            stranger.write(newChat.encode());
            QTRY_COMPARE(stranger.state(), QLocalSocket::UnconnectedState);
            QVERIFY(requests.isEmpty());
        }
        QCOMPARE(::seteuid(nobody), 0);
        const Descriptor squatter = UserSocket::listenAt(path);
        QCOMPARE(::seteuid(0), 0);
        QVERIFY(squatter.isOpen());
        SingleInstance first(m_folder->path());
        QCOMPARE(first.claim().outcome, Outcome::first);
        QCOMPARE(launch(m_folder->path()), Outcome::handedOver);
    }

    void strangersAreNotObeyed_data()
    {
        const auto row = table<QByteArray, bool>("words", "stays");
        row("other words", "show : :; quit\n", true);
        row("too many", QByteArray(1 << 20, 'x'), true);
        row("one that has given up", newChat.encode(), false);
    }

    void strangersAreNotObeyed()
    {
        QFETCH(const QByteArray, words);
        QFETCH(const bool, stays);
        SingleInstance first(m_folder->path());
        QCOMPARE(first.claim().outcome, Outcome::first);
        const QSignalSpy requests(&first, &SingleInstance::requested);
        QLocalSocket stranger;
        stranger.setSocketDescriptor(UserSocket::connectTo(socketIn(u"runtime"_s)).release());
        stranger.write(words);
        stranger.flush();
        if (stays)
            QTRY_COMPARE(stranger.state(), QLocalSocket::UnconnectedState);
        else
            stranger.abort();
        QCOMPARE(launch(m_folder->path()), Outcome::handedOver);
        QCOMPARE(requests.size(), 1);
    }

    void oneThatSaysNothing()
    {
        SingleInstance first(m_folder->path());
        QCOMPARE(first.claim().outcome, Outcome::first);
        // Of this thread, which cannot answer meanwhile.
        const auto claim = SingleInstance(m_folder->path(), std::chrono::milliseconds(1)).claim();
        QCOMPARE(claim.outcome, Outcome::unanswered);
        QCOMPARE(claim.process, ::getpid());
    }

    void aQuittingOneIsReplaced()
    {
        auto quitting = std::make_unique<SingleInstance>(m_folder->path());
        QCOMPARE(quitting->claim().outcome, Outcome::first);
        const QSignalSpy requests(quitting.get(), &SingleInstance::requested);
        quitting->stopAnswering();
        QCOMPARE(SingleInstance(m_folder->path(), std::chrono::milliseconds(1)).claim().outcome,
                 Outcome::unanswered);
        QTimer::singleShot(0, this, [&] { quitting.reset(); });
        QCOMPARE(launch(m_folder->path()), Outcome::first);
        QVERIFY(requests.isEmpty());
    }

    void requestsAreReadStrictly_data()
    {
        const auto row = table<QByteArray, std::optional<LaunchRequest>>("line", "request");
        const auto refused = std::optional<LaunchRequest>();
        row("plain", "show : :\n", LaunchRequest());
        row("with all there is", "new-chat :kwin-42 :host-1_TIME4711\n", newChat);
        row("the longest token", "show :" + QByteArray(256, 'x') + " :\n",
            LaunchRequest{LaunchRequest::Wish::show, {QByteArray(256, 'x'), {}}});
        row("a longer one", "show :" + QByteArray(257, 'x') + " :\n", refused);
        row("another word", "quit : :\n", refused);
        row("no end", "show : :", refused);
        row("too little", "show :\n", refused);
        row("too much", "show : : :\n", refused);
        row("control characters", "show :a\x1b :\n", refused);
        row("other letters", "show :\xc3\xa4 :\n", refused);
    }

    void requestsAreReadStrictly()
    {
        QFETCH(const QByteArray, line);
        QFETCH(const std::optional<LaunchRequest>, request);
        QCOMPARE(LaunchRequest::decode(line), request);
        QVERIFY(!request || request->encode() == line);
    }
};

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "tst_singleinstance.moc"
