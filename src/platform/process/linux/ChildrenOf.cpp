#include "platform/process/linux/ChildrenOf.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// The head of what getdents64 returns for each entry; the C library has no declaration that could be read
// without allocating.
struct Entry
{
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char name[1];
};

// The number that `text` begins with; 0 when it begins with none.
pid_t numberIn(const char *text)
{
    pid_t number = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        number = number * 10 + (*text - '0');
    return number;
}

// Of the process whose folder is called `name`; 0 when it is gone.
pid_t parentOf(int proc, const char *name)
{
    char path[32] = {};
    constexpr char file[] = "/stat";
    const std::size_t length = ::strnlen(name, sizeof path);
    if (length + sizeof file > sizeof path)
        return 0;
    std::memcpy(path, name, length);
    std::memcpy(path + length, file, sizeof file);
    const int descriptor = ::openat(proc, path, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return 0;
    // "ID (NAME) STATE PARENT …", where the name may hold anything.
    char text[256] = {};
    const ssize_t count = ::read(descriptor, text, sizeof text - 1);
    ::close(descriptor);
    const char *const behindName = count > 0 ? std::strrchr(text, ')') : nullptr;
    return behindName && std::strlen(behindName) > 4 ? numberIn(behindName + 4) : 0;
}

} // namespace

void forEachChildOf(pid_t parent, void (*visit)(pid_t child))
{
    const int proc = ::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (proc < 0)
        return;
    alignas(Entry) char entries[4096];
    long filled = 0;
    while ((filled = ::syscall(SYS_getdents64, proc, entries, sizeof entries)) > 0) {
        for (long position = 0; position < filled;) {
            std::uint16_t length = 0;
            std::memcpy(&length, entries + position + offsetof(Entry, length), sizeof length);
            const char *const name = entries + position + offsetof(Entry, name);
            const pid_t id = numberIn(name);
            if (id > 0 && parentOf(proc, name) == parent)
                visit(id);
            position += length;
        }
    }
    ::close(proc);
}
