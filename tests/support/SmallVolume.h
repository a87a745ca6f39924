// A volume of a few megabytes in the place of a folder, for tests that fill it. To be had on Linux, and only
// by the superuser.
#pragma once

#include <QString>

class SmallVolume
{
public:
    // `folder` is made; it holds at most `bytes`.
    SmallVolume(const QString &folder, qint64 bytes);
    ~SmallVolume();
    SmallVolume(const SmallVolume &) = delete;
    SmallVolume &operator=(const SmallVolume &) = delete;

    // Leaves no byte free; empties what fill() brought.
    void fill() const;
    void makeRoom() const;

    // Why there is no such volume; empty when there is.
    const QString &refusal() const { return m_refusal; }

private:
    QString filler() const { return m_folder + QStringLiteral("/filler"); }

    QString m_folder;
    QString m_refusal;
};
