// Writes tar archives entry by entry, those that no archive tool would make included.
#pragma once

#include <QByteArray>
#include <QList>

class TarArchive
{
public:
    enum Kind : char
    {
        file = '0',
        hardLink = '1',
        symbolicLink = '2',
        characterDevice = '3',
        folder = '5',
        namedPipe = '6'
    };

    // `content` is that of a file; the target of a link. Names and targets are at most 100 bytes long.
    TarArchive &add(const QByteArray &name, Kind kind, const QByteArray &content = {}, int mode = 0755)
    {
        m_entries.append({name, kind, content, mode});
        return *this;
    }
    TarArchive &addFile(const QByteArray &name, const QByteArray &content, int mode = 0755)
    {
        return add(name, file, content, mode);
    }

    // With `after` for every `before` in names and targets.
    TarArchive replaced(const QByteArray &before, const QByteArray &after) const;

    // Compressed the way this system's release file is. Ends the test program when that cannot be done.
    QByteArray compressed() const;

private:
    struct Entry
    {
        QByteArray name;
        Kind kind;
        QByteArray content;
        int mode;
    };

    static QByteArray encoded(const Entry &entry);

    QList<Entry> m_entries;
};
