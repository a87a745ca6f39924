#include "platform/instance/SingleInstance.h"
#include "support/TestFolder.h"

#include <QLocalSocket>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <memory>

using namespace Qt::StringLiterals;

class SingleInstanceTest : public QObject
{
    Q_OBJECT

    const TestFolder m_folder;

private Q_SLOTS:
    void secondLaunchHandsOverAndTouchesNothing()
    {
        SingleInstance first(m_folder.filePath(u"made/later"_s));
        QVERIFY(first.claim());
        const QSignalSpy shown(&first, &SingleInstance::showRequested);
        const QSignalSpy newChat(&first, &SingleInstance::newChatRequested);
        QDir profile(m_folder.filePath(u"made/later"_s), {}, QDir::Name, QDir::AllEntries | QDir::Hidden);
        const QStringList before = profile.entryList();
        // The same folder under another spelling is the same profile.
        SingleInstance second(m_folder.filePath(u"made/./later/"_s));
        QVERIFY(!second.claim());
        QTRY_COMPARE(shown.count(), 1);
        QVERIFY(!second.claim(SingleInstance::Wish::newChat));
        QTRY_COMPARE(newChat.count(), 1);
        QCOMPARE(shown.count(), 1);
        profile.refresh();
        QCOMPARE(profile.entryList(), before);
        QVERIFY(SingleInstance(m_folder.filePath(u"other"_s)).claim());
        QVERIFY(QFile::link(m_folder.path(), m_folder.filePath(u"link"_s)));
        QVERIFY(!SingleInstance(m_folder.filePath(u"link/made/later"_s)).claim());
        QTRY_COMPARE(shown.count(), 2);
    }

    void strangersAreNotObeyed()
    {
        QDir sockets(QDir::tempPath(), u"tarnwick-*"_s, QDir::Name, QDir::System);
        const QStringList before = sockets.entryList();
        SingleInstance first(m_folder.filePath(u"strangers"_s));
        QVERIFY(first.claim());
        const QSignalSpy shown(&first, &SingleInstance::showRequested);
        const QSignalSpy newChat(&first, &SingleInstance::newChatRequested);
        sockets.refresh();
        QStringList names = sockets.entryList();
        names.removeIf([&before](const QString &name) { return before.contains(name); });
        QCOMPARE(names.size(), 1);
        const QFileInfo file(sockets.filePath(names.first()));
        QVERIFY(!file.permission(QFile::ReadGroup) && !file.permission(QFile::WriteOther));
        for (const QByteArray &words : {QByteArray("new-chat; quit\n"), QByteArray(1 << 20, 'x')}) {
            QLocalSocket stranger;
            stranger.connectToServer(file.filePath());
            stranger.write(words);
            QTRY_COMPARE(stranger.state(), QLocalSocket::UnconnectedState);
        }
        QCOMPARE(shown.count() + newChat.count(), 0);
    }

    void aQuittingOneIsReplaced()
    {
        auto quitting = std::make_unique<SingleInstance>(m_folder.path());
        QVERIFY(quitting->claim());
        const QSignalSpy shown(quitting.get(), &SingleInstance::showRequested);
        quitting->stopAnswering();
        QSemaphore launched;
        bool claimed = false;
        const std::unique_ptr<QThread> launch(QThread::create([&] {
            SingleInstance next(m_folder.path());
            launched.release();
            claimed = next.claim();
        }));
        launch->start();
        launched.acquire();
        QVERIFY(!launch->wait(100));
        quitting.reset();
        QVERIFY(launch->wait());
        QVERIFY(claimed);
        QCOMPARE(shown.count(), 0);
    }
};

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "tst_singleinstance.moc"
