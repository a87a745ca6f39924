// Folders for what concerns their owner alone.
#pragma once

#include <QString>

// Creates `path` and its missing parents, all closed to other users; folders that exist stay as they are.
// Returns 0, or the errno value of the folder that could not be made; most callers leave the report to
// whoever writes there next. Any thread.
int makePrivateFolder(const QString &path);
