#include "platform/process/Descriptor.h"

#include "platform/error/SystemError.h"

#include <QtGlobal>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace {

Descriptor aboveStandard(const Descriptor &original)
{
    const int copy = ::fcntl(original.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (copy < 0)
        throw SystemError(errno);
    return Descriptor(copy);
}

} // namespace

Descriptor::Descriptor(Descriptor &&other) noexcept : m_number(other.release()) {}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    std::swap(m_number, other.m_number);
    return *this;
}

Descriptor::~Descriptor()
{
    if (isOpen())
        ::close(m_number);
}

int Descriptor::release()
{
    return std::exchange(m_number, -1);
}

Pipe Pipe::make()
{
    int ends[2];
#ifdef Q_OS_LINUX
    const int made = ::pipe2(ends, O_CLOEXEC);
#else
    const int made = ::pipe(ends);
#endif
    if (made != 0)
        throw SystemError(errno);
    const Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    return {aboveStandard(reading), aboveStandard(writing)};
}
