#include "platform/http/OneWayBody.h"

#include <algorithm>

OneWayBody::OneWayBody(const QByteArray &bytes, QObject *parent) : QIODevice(parent), m_bytes(bytes)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 OneWayBody::bytesAvailable() const
{
    return m_bytes.size() - m_position + QIODevice::bytesAvailable();
}

bool OneWayBody::atEnd() const
{
    return bytesAvailable() == 0;
}

qint64 OneWayBody::readData(char *data, qint64 maxSize)
{
    const qsizetype size = std::min<qsizetype>(maxSize, m_bytes.size() - m_position);
    if (size == 0)
        return -1;
    std::copy_n(m_bytes.constData() + m_position, size, data);
    m_position += size;
    return size;
}

qint64 OneWayBody::writeData(const char *, qint64)
{
    return -1;
}
