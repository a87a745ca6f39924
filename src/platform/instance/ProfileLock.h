// The file in a profile's folder that the program which uses the profile holds locked. The lock is the
// kernel's: it ends with the program, however that ends, so what stands in the file never keeps anybody out.
#pragma once

#include "platform/process/Descriptor.h"

#include <QString>

#include <optional>

class ProfileLock
{
public:
    // The folder has to be there; nothing is made yet.
    explicit ProfileLock(const QString &folder);

    enum class State
    {
        taken,       // ours until this object ends
        held,        // another program has it
        unsupported, // the file system knows no locks
        blocked,     // what stands in the file's place is no file of this user's alone that can be opened
        failed       // no file can be made there; error() says why
    };
    // Tries once and does not wait, whatever stands in the file's place.
    State take();
    int error() const { return m_error; } // an errno value

    QString path() const { return m_folder + QStringLiteral("/instance.lock"); }

    // What a program that holds the lock says of itself.
    struct Holder
    {
        qint64 process = 0; // its id; 0: not known
        QString socket;     // the path at which it answers; empty: nowhere

        bool operator==(const Holder &) const = default;
    };
    // For others to read. A disk that has no room for it is no failure.
    void tell(const Holder &holder) const;
    // What was told last. Nothing that a program acts on without looking: it may be left from any life of the
    // file.
    Holder told() const;

private:
    State open();
    bool isStillInPlace() const;

    QString m_folder;
    Descriptor m_file;
    int m_error = 0;
};
