// The body of a request as a device that cannot be rewound. Qt silently sends a request again when a
// kept-alive connection drops before the answer; with such a body it cannot, and says so.
#pragma once

#include <QByteArray>
#include <QIODevice>

class OneWayBody final : public QIODevice
{
public:
    explicit OneWayBody(const QByteArray &bytes, QObject *parent = nullptr);

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;
    bool atEnd() const override;
    bool seek(qint64) override { return false; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    QByteArray m_bytes;
    qsizetype m_position = 0;
};
