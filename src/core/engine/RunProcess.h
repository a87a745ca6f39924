// Runs a short-lived program to its end.
#pragma once

#include "core/engine/Environment.h"
#include "platform/async/Task.h"

#include <QString>
#include <QStringList>

#include <limits>
#include <optional>

struct ProcessResult
{
    int status = 0; // the exit status, or the number of the signal that ended the program
    QString output; // standard output and error as they were written, U+FFFD for what is not UTF-8

    bool operator==(const ProcessResult &) const = default;
};

// Starts `program` and waits for its end, without a time limit; its output is read while it runs. With an
// environment it gets exactly that one, otherwise that of this process. Of a long output only the last
// `keptOutput` bytes are returned. Throws SystemError when the system refuses to start the program, and
// CancellationError once quitting has begun.
Task<ProcessResult> runProcess(QString program, QStringList arguments,
                               std::optional<Environment> environment = std::nullopt,
                               qint64 keptOutput = std::numeric_limits<qint64>::max());

// Kills every program that runProcess() still waits for. For quitting.
void endShortLivedChildren();
