#include "platform/instance/SingleInstance.h"
#include "support/TestFolder.h"

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
        const QDir profile(m_folder.filePath(u"made/later"_s), {}, QDir::Name,
                           QDir::AllEntries | QDir::Hidden);
        const QStringList before = profile.entryList();
        // The same folder under another spelling is the same profile.
        SingleInstance second(m_folder.filePath(u"made/./later/"_s));
        QVERIFY(!second.claim());
        QTRY_COMPARE(shown.count(), 1);
        QVERIFY(!second.claim(SingleInstance::Wish::newChat));
        QTRY_COMPARE(newChat.count(), 1);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(QDir(profile).entryList(), before);
        QVERIFY(SingleInstance(m_folder.filePath(u"other"_s)).claim());
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
        quitting.reset();
        QVERIFY(launch->wait());
        QVERIFY(claimed);
        QCOMPARE(shown.count(), 0);
    }
};

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "tst_singleinstance.moc"
