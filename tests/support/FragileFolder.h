// A folder that can be taken away from the program, one way or another, and given back. What it needs of the
// system is to be had on Linux, with a view of the file system of one's own or as the superuser.
#pragma once

#include "support/PrivateMounts.h"
#include "support/SmallVolume.h"

#include <QString>

#include <optional>

class FragileFolder
{
public:
    enum Fault
    {
        readOnly,
        full, // a volume that holds half a megabyte and no more
        removed,
        aFile // in its place
    };

    FragileFolder(const QString &path, Fault fault);

    // Why it cannot fail in this way here; empty when it can.
    QString refusal() const { return m_volume ? m_volume->refusal() : QString(); }

    void breakDown();
    void mend();

private:
    const QString m_path;
    const Fault m_fault;
    std::optional<SmallVolume> m_volume;
    std::optional<ReadOnlyFolder> m_mount;
};

// The column "fault" with a row for each.
void addFolderFaults();
