#include "support/FragileFolder.h"

#include "core/engine/AppPaths.h"

#include <QDir>
#include <QFile>
#include <QTest>

FragileFolder::FragileFolder(const QString &path, Fault fault) : m_path(path), m_fault(fault)
{
    if (fault == full)
        m_volume.emplace(path, 512 * 1024);
}

void FragileFolder::breakDown()
{
    if (m_fault == readOnly)
        m_mount.emplace(m_path);
    else if (m_fault == full)
        m_volume->fill();
    else
        QDir(m_path).removeRecursively();
    QFile file(m_path);
    if (m_fault == aFile && !file.open(QIODevice::WriteOnly))
        qFatal("%s cannot be replaced", qUtf8Printable(m_path));
}

void FragileFolder::mend()
{
    m_mount.reset();
    if (m_fault == full)
        m_volume->makeRoom();
    if (m_fault == aFile)
        QFile::remove(m_path);
    AppPaths::ensure(m_path);
}

void addFolderFaults()
{
    QTest::addColumn<FragileFolder::Fault>("fault");
    QTest::newRow("read-only") << FragileFolder::readOnly;
    QTest::newRow("full") << FragileFolder::full;
    QTest::newRow("removed") << FragileFolder::removed;
    QTest::newRow("replaced by a file") << FragileFolder::aFile;
}
