#include "platform/files/RemoveTree.h"
#include "support/TestFolder.h"

#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class RemoveTreeTest : public QObject
{
    Q_OBJECT

    const TestFolder m_folder;

private Q_SLOTS:
    // Even what its owner has locked.
    void removesWhatIsThere()
    {
        for (const mode_t mode : {mode_t(0700), mode_t(0)}) {
            for (const QString &name : {u"kept/file"_s, u"tree/a/b/.hidden"_s,
                                        u"tree/a/.tarnwick-removed-1/x"_s, u"tree/.tarnwick-removed-1/y"_s})
                m_folder.put(name);
            for (const QString &name : {u"tree/a/link"_s, u"link"_s})
                QVERIFY(QFile::link(m_folder.filePath(u"kept"_s), m_folder.filePath(name)));
            for (const QString &name : {u"tree/a/b"_s, u"tree/a"_s, u"tree"_s})
                QVERIFY(::chmod(qPrintable(m_folder.filePath(name)), mode) == 0);
            for (const QString &name : {u"tree"_s, u"link"_s, u"not there"_s})
                removeTree(m_folder.filePath(name));
            QCOMPARE(m_folder.entries(), QStringList{u"kept"_s});
            QCOMPARE(m_folder.contentOf(u"kept/file"_s), "x"_ba);
        }
    }
};

QTEST_GUILESS_MAIN(RemoveTreeTest)
#include "tst_removetree.moc"
