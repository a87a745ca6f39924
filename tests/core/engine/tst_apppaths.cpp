#include "core/engine/AppPaths.h"
#include "support/TestFolder.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class AppPathsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folders()
    {
        const TestFolder home;
#ifdef Q_OS_LINUX
        qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
        QCOMPARE(AppPaths::chatsDir(), home.filePath(u"Tarnwick/chats"_s));
#endif
        AppPaths::setApplicationDir(home.filePath(u"elsewhere"_s));
        QCOMPARE(AppPaths::tempDir(), home.filePath(u"elsewhere/tmp"_s));
        QVERIFY(home.entries().isEmpty());
        AppPaths::ensure(AppPaths::modelsDir());
        for (const QString &made : {u"elsewhere"_s, u"elsewhere/models"_s})
            QCOMPARE(QFile::permissions(home.filePath(made)) & QFile::Permissions(0x7077),
                     QFile::Permissions(0x7000));
        AppPaths::setApplicationDir({});
    }

    void directorySize()
    {
        const TestFolder folder;
        folder.put(u"ten"_s, "0123456789");
        QVERIFY(QFile::resize(folder.put(u"deep/.hidden/.large"_s), qint64(5) << 30));
        // Links to the tree itself and to what is outside of it.
        QFile::link(folder.path(), folder.filePath(u"deep/up"_s));
        QFile::link(u"/usr"_s, folder.filePath(u"deep/usr"_s));
        QCOMPARE(AppPaths::directorySize(folder.path()), (qint64(5) << 30) + 10);
        const StopSource stopped;
        stopped.requestStop();
        QCOMPARE(AppPaths::directorySize(folder.path(), stopped.token()), 0);
    }

    void findBinary()
    {
        const TestFolder folder;
        for (const QString &other : {u"bin/Ollama"_s, u"bin/ollama.txt"_s, u"ollama/lib/x"_s})
            folder.put(other);
        QCOMPARE(AppPaths::findBinary(folder.path()), std::nullopt);
        const QString hidden = folder.put(u".x/ollama"_s);
        QCOMPARE(AppPaths::findBinary(folder.path()), hidden);
    }

    void findFreePort()
    {
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::LocalHost));
        QVERIFY(!AppPaths::portIsFree(other.serverPort()));
        const std::optional<int> next = AppPaths::findFreePort(other.serverPort() - 1);
        QVERIFY(next && *next > other.serverPort() && AppPaths::portIsFree(*next));
        for (const int port : {-1, 0, 65'536 + *next})
            QVERIFY(!AppPaths::portIsFree(port));
        QCOMPARE(AppPaths::findFreePort(std::numeric_limits<int>::max()), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(AppPathsTest)
#include "tst_apppaths.moc"
