#include "platform/desktop/FileReveal.h"

#include <QProcess>

using namespace Qt::StringLiterals;

void revealFile(const QString &path)
{
    QProcess::startDetached(u"/usr/bin/open"_s, {u"-R"_s, path});
}
