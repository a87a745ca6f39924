// What this process holds of the system at one moment, read from /proc.
#pragma once

#include <QList>
#include <QString>

#include <sys/types.h>

struct Resources
{
    int threads = 0;
    int sockets = 0;
    int otherFiles = 0;  // open handles that are no sockets
    int processes = 0;   // children, those included that have ended and wait to be reaped
    qint64 resident = 0; // bytes
    qint64 heap = 0;     // bytes in use, of what the C library has given out

    static Resources now();

    // Whether there is no thread, handle or process that `before` does not have.
    bool holdsNoMoreThan(const Resources &before) const;
    QString text() const;
};

QList<pid_t> childProcesses();
// Kills (SIGKILL) the programs that run as children, which are children of the children. Whether there was
// one.
bool killPrograms();
