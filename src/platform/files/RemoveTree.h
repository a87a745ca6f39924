// Removes whole folders of any content and depth.
#pragma once

#include <QString>

// Removes `path` with everything below it; a symbolic link is removed itself, never followed. Folders that
// forbid it are given the permission first. What cannot be removed stays, without a word. Any thread.
void removeTree(const QString &path);
