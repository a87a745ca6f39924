#include "platform/machine/Machine.h"
#include "support/TestFolder.h"

#include <QTcpServer>
#include <QTest>

#include <unistd.h>

#ifdef Q_OS_LINUX
#include "platform/machine/linux/ListeningSockets.h"
#include "platform/machine/linux/MemoryBlocks.h"
#endif

using namespace Qt::StringLiterals;

class MachineTest : public QObject
{
    Q_OBJECT

    const TestFolder m_folder;

private Q_SLOTS:
#ifdef Q_OS_LINUX
    void countsOnlineBlocks()
    {
        m_folder.put(u"memory0/online"_s, "1\n");
        QCOMPARE(onlineMemory(m_folder.path()), std::nullopt);
        m_folder.put(u"block_size_bytes"_s, "8000000\n");
        m_folder.put(u"memory1/online"_s, "0\n");
        m_folder.put(u"memory271/online"_s, "1\n");
        m_folder.put(u"power/online"_s, "1\n");
        QCOMPARE(onlineMemory(m_folder.path()), quint64(2) * 0x8000000);
    }

    void tellsWhoListens()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QCOMPARE(listeningUser(server.serverPort()), ::getuid());
        const QByteArray own = "1: 0100007F:2CAB 00000000:0000 0A 0:0 00:0 0 1000 0 1\n";
        const QByteArray connected = "2: 0100007F:2CAB 0100007F:1111 01 0:0 00:0 0 999 0 1\n";
        const QByteArray anybodys = "3: 00000000:2CAB 00000000:0000 0A 0:0 00:0 0 998 0 1\n";
        const QByteArray six = "4: 00000000000000000000000000000000:2CAB 0:0 0A 0:0 00:0 0 997 0 1\n";
        QCOMPARE(listenerIn(connected + anybodys + own, six, 11435), uid_t(1000));
        QCOMPARE(listenerIn(connected + anybodys, six, 11435), uid_t(998));
        QCOMPARE(listenerIn(connected, six, 11435), uid_t(997));
        QCOMPARE(listenerIn(connected, six, 11436), std::nullopt);
    }
#endif

    void answersForThisMachine()
    {
        QVERIFY(availableCapacity(m_folder.path()).value_or(-1) >= 0);
        QCOMPARE(availableCapacity(m_folder.filePath(u"missing"_s)), std::nullopt);
        QVERIFY(physicalMemory() >= quint64(256) * 1024 * 1024);
    }
};

QTEST_GUILESS_MAIN(MachineTest)
#include "tst_machine.moc"
