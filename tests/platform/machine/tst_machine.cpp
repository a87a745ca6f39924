#include "platform/machine/Machine.h"
#include "support/TestFolder.h"

#include <QTest>

#ifdef Q_OS_LINUX
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
