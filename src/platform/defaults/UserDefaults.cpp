#include "platform/defaults/UserDefaults.h"

#include "platform/files/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QMetaType>

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

// Qt would make the file readable for everyone, and keeps the modes of one that is there.
void makePrivateFile(const QString &path)
{
    makePrivateFolder(QFileInfo(path).path());
    QFile(path).open(QIODevice::NewOnly | QIODevice::WriteOnly, QFile::ReadOwner | QFile::WriteOwner);
}

} // namespace

UserDefaults::UserDefaults(QObject *parent)
    : QObject(parent),
      m_settings(std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, u"Tarnwick"_s,
                                             u"Tarnwick"_s))
{
    m_settings->setFallbacksEnabled(false);
#ifndef Q_OS_MACOS
    makePrivateFile(m_settings->fileName());
#endif
}

UserDefaults::UserDefaults(const QString &iniFile, QObject *parent)
    : QObject(parent), m_settings(std::make_unique<QSettings>(iniFile, QSettings::IniFormat))
{
    makePrivateFile(iniFile);
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
    if (!m_settings->contains(key))
        return;
    m_settings->remove(key);
    m_settings->sync();
    Q_EMIT changed(key);
}

void UserDefaults::store(const QString &key, const QVariant &value)
{
    m_settings->setValue(key, value);
    m_settings->sync();
    Q_EMIT changed(key);
}
