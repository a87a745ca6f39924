#include "support/Lifeline.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

Lifeline::Lifeline()
{
    const QByteArray name = QFile::encodeName(path());
    ::mkfifo(name.constData(), 0600);
    m_reading = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (m_reading < 0)
        qFatal("There is no named pipe");
}

Lifeline::~Lifeline()
{
    ::close(m_reading);
}

bool Lifeline::wasHeld()
{
    char bytes[64];
    const auto count = ::read(m_reading, bytes, sizeof bytes);
    m_held = m_held || count > 0;
    m_released = m_held && count == 0;
    return m_held;
}

bool Lifeline::isReleased()
{
    return wasHeld() && m_released;
}
