#include "platform/files/PrivateFolder.h"

#include <QDir>
#include <QFile>

#include <cerrno>

#include <sys/stat.h>

namespace {

int make(const QString &path)
{
    return ::mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0 || errno == EEXIST ? 0 : errno;
}

} // namespace

int makePrivateFolder(const QString &path)
{
    // From the first parent that is there, so that none is made with the modes of everyday.
    QString folder = QDir::cleanPath(QDir(path).absolutePath());
    QStringList missing;
    while (!QDir(folder).exists() && !QDir(folder).isRoot()) {
        missing.prepend(folder);
        folder = QDir::cleanPath(folder + QStringLiteral("/.."));
    }
    for (const QString &name : std::as_const(missing)) {
        if (const int error = make(name))
            return error;
    }
    return 0;
}
