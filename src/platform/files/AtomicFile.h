// Whole files written so that whoever reads one sees the old content or the new, never a part of it, whatever
// moment the program dies at.
#pragma once

#include <QByteArray>
#include <QString>

class AtomicFile
{
public:
    // Who may read a written file: its owner alone, or (for a document the user asked for) whoever could read
    // the file it replaces, a new one being made as the desktop makes any other.
    enum class Access
    {
        ownerOnly,
        asUsual
    };

    // Puts `content` under `path`, replacing the file that is there; a symbolic link is followed, not
    // replaced. On return the bytes are on the disk. Throws a SystemError, and leaves the old file as it was.
    // Any thread.
    static void write(const QString &path, const QByteArray &content, Access access = Access::ownerOnly);

    // Removes the temporary files that interrupted writes left in `folder` (its subfolders apart), and
    // nothing else. Not while something may be writing there. Any thread.
    static void removeLeftovers(const QString &folder);
};
