#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

TestFolder::TestFolder(const QString &parent) : m_folder(parent + "/tarnwick-test-XXXXXX"_L1)
{
    if (!m_folder.isValid())
        qFatal("No temporary folder: %s", qUtf8Printable(m_folder.errorString()));
}

QString TestFolder::put(const QString &name, const QByteArray &content) const
{
    QFile file(filePath(name));
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qUtf8Printable(file.fileName()));
    return file.fileName();
}

QByteArray TestFolder::contentOf(const QString &name) const
{
    QFile file(filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

int TestFolder::modeOf(const QString &name) const
{
    struct stat facts = {};
    const bool exists = ::stat(QFile::encodeName(filePath(name)).constData(), &facts) == 0;
    return exists ? static_cast<int>(facts.st_mode & 07777) : -1;
}

QStringList TestFolder::entries() const
{
    constexpr auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QStringList names = QDir(path()).entryList(everything);
    names.sort();
    return names;
}
