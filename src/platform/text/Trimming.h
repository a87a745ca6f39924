// Trimming that leaves line breaks alone, beside QString::trimmed(), which does not.
#pragma once

#include <QStringView>

// `text` without the tabs and the space separators (Unicode category Zs) at both ends.
QString trimmedOfBlanks(QStringView text);
