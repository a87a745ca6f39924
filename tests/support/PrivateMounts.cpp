#include "support/PrivateMounts.h"

#include <QFile>

#include <cerrno>
#include <cstring>

#ifdef Q_OS_LINUX
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

#ifdef Q_OS_LINUX

namespace {

void writeTo(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
}

bool unshareMounts()
{
    if (::unshare(CLONE_NEWNS) == 0)
        return true;
    // Who is not the superuser becomes so in a user namespace, as far as that reaches.
    const QByteArray user = "0 " + QByteArray::number(::getuid()) + " 1";
    const QByteArray group = "0 " + QByteArray::number(::getgid()) + " 1";
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    writeTo(u"/proc/self/setgroups"_s, "deny");
    writeTo(u"/proc/self/uid_map"_s, user);
    writeTo(u"/proc/self/gid_map"_s, group);
    return true;
}

} // namespace

QString PrivateMounts::enter()
{
    if (unshareMounts() && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0)
        return {};
    return u"folders cannot be mounted here: "_s + QString::fromLocal8Bit(std::strerror(errno));
}

ReadOnlyFolder::ReadOnlyFolder(const QString &folder) : m_folder(QFile::encodeName(folder))
{
    const char *const path = m_folder.constData();
    if (::mount(path, path, nullptr, MS_BIND, nullptr) != 0 ||
        ::mount(nullptr, path, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr) !=
            0)
        qFatal("%s cannot be made read-only: %s", path, std::strerror(errno));
}

ReadOnlyFolder::~ReadOnlyFolder()
{
    ::umount2(m_folder.constData(), MNT_DETACH);
}

#else

QString PrivateMounts::enter()
{
    return u"folders are mounted on Linux only"_s;
}

ReadOnlyFolder::ReadOnlyFolder(const QString &folder) : m_folder(QFile::encodeName(folder)) {}
ReadOnlyFolder::~ReadOnlyFolder() = default;

#endif
