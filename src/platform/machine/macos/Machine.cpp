#include "platform/machine/Machine.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <memory>
#include <type_traits>

#include <CoreFoundation/CoreFoundation.h>
#include <sys/sysctl.h>

namespace {

struct Releaser
{
    void operator()(CFTypeRef reference) const { CFRelease(reference); }
};

template <class Reference>
using Held = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;

std::optional<qint64> capacity(CFURLRef url, CFStringRef key)
{
    CFNumberRef number = nullptr;
    if (!CFURLCopyResourcePropertyForKey(url, key, static_cast<void *>(&number), nullptr) || !number)
        return std::nullopt;
    const Held<CFNumberRef> held(number);
    qint64 bytes = 0;
    return CFNumberGetValue(number, kCFNumberSInt64Type, &bytes) ? std::optional(bytes) : std::nullopt;
}

} // namespace

quint64 physicalMemory()
{
    quint64 bytes = 0;
    size_t size = sizeof bytes;
    return sysctlbyname("hw.memsize", &bytes, &size, nullptr, 0) == 0 ? bytes : 0;
}

std::optional<qint64> availableCapacity(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const Held<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.constData()), name.size(), false));
    if (!url)
        return std::nullopt;
    const auto important = capacity(url.get(), kCFURLVolumeAvailableCapacityForImportantUsageKey);
    if (!important || *important > 0)
        return important;
    // Volumes that keep nothing to purge, network ones among them, answer 0 to the question above.
    return capacity(url.get(), kCFURLVolumeAvailableCapacityKey);
}

std::optional<uid_t> listeningUser(int)
{
    return std::nullopt; // the system tells only of one's own programs
}
