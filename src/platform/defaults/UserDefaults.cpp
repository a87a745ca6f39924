#include "platform/defaults/UserDefaults.h"

#include "platform/files/PrivateFolder.h"
#include "platform/process/Descriptor.h"

#include <QFile>
#include <QFileInfo>
#include <QMetaType>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

// An INI file keeps neither booleans nor numbers as such: both come back as texts.
std::optional<QString> scalarText(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::QString:
        return value.toString();
    default:
        return std::nullopt;
    }
}

std::optional<bool> asBoolean(const QVariant &value)
{
    const auto text = scalarText(value);
    if (text == u"true"_s || text == u"1"_s)
        return true;
    if (text == u"false"_s || text == u"0"_s)
        return false;
    return std::nullopt;
}

std::optional<int> asInteger(const QVariant &value)
{
    const auto text = scalarText(value);
    if (!text)
        return std::nullopt;
    bool valid = false;
    const int number = text->toInt(&valid);
    return valid ? std::optional(number) : std::nullopt;
}

std::optional<QString> asString(const QVariant &value)
{
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QByteArray> asData(const QVariant &value)
{
    return value.typeId() == QMetaType::QByteArray ? std::optional(value.toByteArray()) : std::nullopt;
}

constexpr off_t longestFile = 16 << 20; // bytes; all settings of a user with many models are some kilobytes

// Qt waits for whatever does not answer, such as a pipe, in the place of the file or of the lock that it puts
// beside the file while it writes. One that lies there before goes, since no two programs share our file.
bool isSafeToOpen(const QString &path)
{
    const QByteArray lock = QFile::encodeName(path + ".lock"_L1);
    struct stat facts = {};
    if (::lstat(lock.constData(), &facts) == 0 && std::remove(lock.constData()) != 0)
        return false;
    const Descriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen())
        return errno == ENOENT;
    return ::fstat(file.number(), &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_size <= longestFile;
}

// Qt would make the file readable for everyone, and keeps the modes of one that is there.
void makePrivateFile(const QString &path)
{
    makePrivateFolder(QFileInfo(path).path());
    // One that is there already is kept, and whoever writes to one that cannot be made finds out.
    const Descriptor made(
        ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
}

#ifndef Q_OS_MACOS
QString desktopsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/Tarnwick/Tarnwick.conf"_L1;
}
#endif

} // namespace

#ifdef Q_OS_MACOS
UserDefaults::UserDefaults(QObject *parent)
    : QObject(parent),
      m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, u"Tarnwick"_s,
                                             u"Tarnwick"_s))
{
    m_settings->setFallbacksEnabled(false);
}
#else
UserDefaults::UserDefaults(QObject *parent) : UserDefaults(desktopsFile(), parent) {}
#endif

UserDefaults::UserDefaults(const QString &iniFile, QObject *parent) : QObject(parent), m_file(iniFile)
{
    makePrivateFile(iniFile);
    if (isSafeToOpen(iniFile))
        m_settings = std::make_unique<QSettings>(iniFile, QSettings::IniFormat);
}

void UserDefaults::registerDefault(const QString &key, const QVariant &value)
{
    m_registered.insert(key, value);
}

bool UserDefaults::boolean(const QString &key) const
{
    return asBoolean(stored(key)).value_or(asBoolean(m_registered.value(key)).value_or(false));
}

int UserDefaults::integer(const QString &key) const
{
    return asInteger(stored(key)).value_or(asInteger(m_registered.value(key)).value_or(0));
}

std::optional<QString> UserDefaults::string(const QString &key) const
{
    const auto text = asString(stored(key));
    return text ? text : asString(m_registered.value(key));
}

std::optional<QByteArray> UserDefaults::data(const QString &key) const
{
    const auto bytes = asData(stored(key));
    return bytes ? bytes : asData(m_registered.value(key));
}

void UserDefaults::set(const QString &key, bool value)
{
    if (asBoolean(stored(key)) != value)
        store(key, value);
}

void UserDefaults::set(const QString &key, int value)
{
    if (asInteger(stored(key)) != value)
        store(key, value);
}

void UserDefaults::set(const QString &key, const QString &value)
{
    if (asString(stored(key)) != value)
        store(key, value);
}

void UserDefaults::set(const QString &key, const QByteArray &value)
{
    if (asData(stored(key)) != value)
        store(key, value);
}

void UserDefaults::remove(const QString &key)
{
    if (stored(key).isValid())
        store(key, {});
}

QVariant UserDefaults::stored(const QString &key) const
{
    if (const auto unsaved = m_unsaved.find(key); unsaved != m_unsaved.end())
        return *unsaved;
    return m_settings ? m_settings->value(key) : QVariant();
}

void UserDefaults::store(const QString &key, const QVariant &value)
{
    if (!isWritable()) {
        m_unsaved.insert(key, value);
    } else {
        m_unsaved.remove(key);
        if (value.isValid())
            m_settings->setValue(key, value);
        else
            m_settings->remove(key);
        m_settings->sync();
    }
    Q_EMIT changed(key);
}

// Qt reads the file again before it writes, and what stands there may have changed.
bool UserDefaults::isWritable() const
{
    return m_settings && (m_file.isEmpty() || isSafeToOpen(m_file));
}
