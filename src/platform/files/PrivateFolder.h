// Folders for what concerns their owner alone.
#pragma once

#include <QString>

// Creates `path` and its missing parents, all closed to other users; folders that exist stay as they are.
// A failure is swallowed: whoever writes there next reports its own. Any thread.
void makePrivateFolder(const QString &path);
