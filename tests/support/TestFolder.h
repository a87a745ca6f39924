// A folder that vanishes with its test, and what tests do with files in it. Names are relative to it.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class TestFolder
{
public:
    explicit TestFolder(const QString &parent = QDir::tempPath());

    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

    // Writes a file along with the folders it needs; returns its path. Ends the test program on failure.
    QString put(const QString &name, const QByteArray &content = "x") const;
    QByteArray contentOf(const QString &name) const;
    // The permissions alone, for example 0644; -1 when there is no such file.
    int modeOf(const QString &name) const;
    // What is directly in the folder, hidden things included, in the order of the names' bytes.
    QStringList entries() const;

private:
    QTemporaryDir m_folder;
};
