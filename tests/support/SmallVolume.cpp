#include "support/SmallVolume.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif

using namespace Qt::StringLiterals;

SmallVolume::SmallVolume(const QString &folder, [[maybe_unused]] qint64 bytes) : m_folder(folder)
{
    QDir().mkpath(folder);
#ifdef Q_OS_LINUX
    const QByteArray options = "size=" + QByteArray::number(bytes);
    if (::mount("none", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData()) != 0)
        m_refusal =
            u"a small volume cannot be mounted here: "_s + QString::fromLocal8Bit(std::strerror(errno));
#else
    m_refusal = u"small volumes are mounted on Linux only"_s;
#endif
}

SmallVolume::~SmallVolume()
{
#ifdef Q_OS_LINUX
    if (m_refusal.isEmpty())
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
#endif
}

void SmallVolume::fill() const
{
    QFile file(filler());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("%s cannot be filled", qUtf8Printable(m_folder));
    const QByteArray page(4096, 'x');
    while (file.write(page) > 0) {
    }
}

void SmallVolume::makeRoom() const
{
    QFile::remove(filler());
}
