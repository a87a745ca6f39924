// Two files or folders change places.
#pragma once

#include <QString>

// In one step: at no moment is there nothing under either path. False, and nothing done, where the system or
// the file system has no such step, or where one of the two is missing. Throws SystemError for everything
// else. Any thread.
bool exchangePaths(const QString &one, const QString &other);
