#include "platform/error/SystemError.h"
#include "platform/files/AtomicFile.h"
#include "support/Table.h"
#include "support/TestFolder.h"

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class AtomicFileTest : public QObject
{
    Q_OBJECT

    std::optional<TestFolder> m_folder;
    QString m_path;

private Q_SLOTS:
    void init()
    {
        m_folder.emplace();
        m_path = m_folder->filePath(u"file"_s);
        AtomicFile::write(m_path, "old");
    }

    void replacesTheContent()
    {
        const QString link = m_folder->filePath(u"link"_s);
        QVERIFY(QFile::link(m_path, link));
        for (const QByteArray &content : {QByteArray(3'000'000, '\0'), QByteArray()}) {
            AtomicFile::write(link, content);
            QCOMPARE(m_folder->contentOf(u"file"_s), content);
        }
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(m_folder->entries(), (QStringList{u"file"_s, u"link"_s}));
    }

    void leavesWhatIsNoFile()
    {
        const QByteArray pipe = QFile::encodeName(m_folder->filePath(u"pipe"_s));
        QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
        QVERIFY_THROWS_EXCEPTION(SystemError, AtomicFile::write(QFile::decodeName(pipe), "new"));
        struct stat status = {};
        QVERIFY(::stat(pipe.constData(), &status) == 0 && S_ISFIFO(status.st_mode));
        QCOMPARE(m_folder->entries().size(), 2);
    }

    void permissions()
    {
        const QString other = m_folder->filePath(u"other"_s);
        const mode_t before = ::umask(022);
        AtomicFile::write(other, "document", AtomicFile::Access::asUsual);
        ::umask(before);
        QCOMPARE(m_folder->modeOf(u"other"_s), 0644);
        QCOMPARE(m_folder->modeOf(u"file"_s), 0600);
        ::chmod(qPrintable(other), 0660);
        AtomicFile::write(other, "document", AtomicFile::Access::asUsual);
        QCOMPARE(m_folder->modeOf(u"other"_s), 0660);
        AtomicFile::write(other, "private");
        QCOMPARE(m_folder->modeOf(u"other"_s), 0600);
    }

    // A limit on file sizes stops the child in the middle of its write, with an error or for good.
    void interruptedWrite_data()
    {
        const auto row = table<bool>("dies");
        row("no room", false);
        row("killed", true);
    }
    void interruptedWrite()
    {
        QFETCH(bool, dies);
        const pid_t child = ::fork();
        if (child == 0) {
            const rlimit none = {};
            const rlimit small = {10'000, 10'000};
            ::setrlimit(RLIMIT_CORE, &none);
            ::setrlimit(RLIMIT_FSIZE, &small);
            std::signal(SIGXFSZ, dies ? SIG_DFL : SIG_IGN);
            try {
                AtomicFile::write(m_path, QByteArray(20'000, 'x'));
            } catch (const SystemError &error) {
                ::_exit(error.code());
            }
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(dies ? WIFSIGNALED(status) : WEXITSTATUS(status) == EFBIG);
        QCOMPARE(m_folder->contentOf(u"file"_s), "old"_ba);
        QCOMPARE(m_folder->entries().size(), dies ? 2 : 1);
        AtomicFile::removeLeftovers(m_folder->path());
        QCOMPARE(m_folder->entries(), QStringList{u"file"_s});
    }

    void onlyOurLeftoversAreRemoved()
    {
        for (const QString &name :
             {u".tarnwick-0123456789ABCDEF.tmp"_s, u".tarnwick-0123456789abcdef.tmp~"_s,
              u"tarnwick-0123456789abcdef.tmp"_s, u".tarnwick-fedcba9876543210.tmp/file"_s})
            m_folder->put(name);
        const QStringList before = m_folder->entries();
        AtomicFile::removeLeftovers(m_folder->path());
        QCOMPARE(m_folder->entries(), before);
    }
};

QTEST_GUILESS_MAIN(AtomicFileTest)
#include "tst_atomicfile.moc"
