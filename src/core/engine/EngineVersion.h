// What is shown of the version that an engine tells.
#pragma once

#include <QString>

// The number in `told`, which may be a sentence or two: the program's own where it says "client version is",
// else that of the server it asked ("version is"), else the text as it is.
QString shownVersion(const QString &told);
