// A view of the file system of this program's own, in which it may mount what it likes: nobody else sees it,
// and it goes with the program. To be had on Linux, where the system lets its users make namespaces.
#pragma once

#include <QString>

class PrivateMounts
{
public:
    // To be called before the program has a second thread. Why there is none, or empty.
    static QString enter();
};

// Makes a folder read-only, also to the superuser, for as long as it lives.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const QString &folder);
    ~ReadOnlyFolder();
    ReadOnlyFolder(const ReadOnlyFolder &) = delete;
    ReadOnlyFolder &operator=(const ReadOnlyFolder &) = delete;

private:
    const QByteArray m_folder;
};
