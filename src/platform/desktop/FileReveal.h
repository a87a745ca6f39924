// Shows a file or folder where it lies.
#pragma once

#include <QString>

// Opens the file manager with `path` selected; where it cannot select, with the folder that holds `path`.
// Returns at once.
void revealFile(const QString &path);
