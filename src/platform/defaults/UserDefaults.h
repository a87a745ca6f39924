// The user's settings under plain keys, written through to disk at every change.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

// Readers are typed: a value of another type than the one asked for counts as absent.
class UserDefaults : public QObject
{
    Q_OBJECT

public:
    // The desktop's own store: the preferences on macOS, a file below $XDG_CONFIG_HOME (~/.config) elsewhere.
    explicit UserDefaults(QObject *parent = nullptr);
    // The INI file `iniFile`. It is made, with its folder and for the user alone, where there is none. What
    // cannot be read of a damaged one is absent. Where no file of at most 16 MiB that can be read stands
    // under that name, nothing is read, what is set lasts until this object ends, and what stands there stays
    // as it is.
    explicit UserDefaults(const QString &iniFile, QObject *parent = nullptr);

    // Whether what was stored before could be read.
    bool isRead() const { return m_settings != nullptr; }

    // What the readers give while nothing usable is stored under `key`. Not written to disk.
    void registerDefault(const QString &key, const QVariant &value);

    // Absent reads as false.
    bool boolean(const QString &key) const;
    // Absent reads as 0, a number outside the range of int too.
    int integer(const QString &key) const;
    std::optional<QString> string(const QString &key) const;
    std::optional<QByteArray> data(const QString &key) const;

    void set(const QString &key, bool value);
    void set(const QString &key, int value);
    void set(const QString &key, const QString &value);
    void set(const QString &key, const QByteArray &value);
    // A literal would otherwise choose the boolean.
    void set(const QString &key, const char *value) = delete;
    void remove(const QString &key);

Q_SIGNALS:
    // What is stored under `key` is another value than before, or gone.
    void changed(const QString &key);

private:
    QVariant stored(const QString &key) const;
    void store(const QString &key, const QVariant &value);
    bool isWritable() const;

    const QString m_file;                  // empty: the preferences of macOS
    std::unique_ptr<QSettings> m_settings; // none where the file is not to be opened
    QHash<QString, QVariant> m_unsaved;    // what could not go there; an invalid value was removed
    QHash<QString, QVariant> m_registered;
};
