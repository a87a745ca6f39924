// What has certainly reached the disk, written down so that it outlives the program: a file of lines, each an
// id and how many messages that conversation holds.
#pragma once

#include <QFile>
#include <QHash>
#include <QUuid>

class Journal
{
public:
    static constexpr qsizetype gone = -1; // removed, or about to be

    explicit Journal(const QString &profile) : m_file(profile + QStringLiteral("/journal"))
    {
        if (!m_file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered))
            qFatal("The journal cannot be written");
    }

    void add(const QUuid &id, qsizetype messages)
    {
        m_file.write(id.toByteArray(QUuid::WithoutBraces) + ' ' + QByteArray::number(messages) + '\n');
    }

    // The last line of each conversation.
    QHash<QUuid, qsizetype> last()
    {
        QHash<QUuid, qsizetype> entries;
        m_file.seek(0);
        for (const QByteArray &line : m_file.readAll().split('\n')) {
            const QByteArrayList fields = line.split(' ');
            if (fields.size() == 2)
                entries.insert(QUuid::fromString(QString::fromLatin1(fields[0])), fields[1].toLongLong());
        }
        return entries;
    }

private:
    QFile m_file;
};
