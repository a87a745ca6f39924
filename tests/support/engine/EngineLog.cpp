#include "EngineLog.h"

#include "Timestamps.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <mutex>

#include <unistd.h>

namespace demo {

namespace {

std::mutex &outputMutex()
{
    static std::mutex mutex;
    return mutex;
}

void writeAll(int descriptor, std::string_view bytes)
{
    const std::lock_guard lock(outputMutex());
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string durationText(std::chrono::nanoseconds took)
{
    const double nanoseconds = static_cast<double>(took.count());
    std::array<char, 32> text{};
    if (nanoseconds < 1e6) {
        std::snprintf(text.data(), text.size(), "%.3fµs", nanoseconds / 1e3);
    } else if (nanoseconds < 1e9) {
        std::snprintf(text.data(), text.size(), "%.6fms", nanoseconds / 1e6);
    } else {
        std::snprintf(text.data(), text.size(), "%.9fs", nanoseconds / 1e9);
    }
    return text.data();
}

} // namespace

void logLine(std::string_view level, std::string_view source, std::string_view message)
{
    std::string line = "time=" + logTimestamp(std::chrono::system_clock::now());
    line.append(" level=").append(level).append(" source=").append(source);
    line.append(" msg=\"").append(message).append("\"\n");
    writeAll(STDERR_FILENO, line);
}

void accessLine(int status, std::chrono::nanoseconds took, std::string_view client, std::string_view method,
                std::string_view path)
{
    const std::string duration = durationText(took);
    std::string line = "[GIN] " + accessTimestamp(std::chrono::system_clock::now());
    line.append(" | ").append(std::to_string(status)).append(" | ");
    line.append(duration.size() < 13 ? 13 - duration.size() : 0, ' ').append(duration).append(" | ");
    line.append(client.size() < 15 ? 15 - client.size() : 0, ' ').append(client).append(" | ");
    line.append(method).append(method.size() < 8 ? 8 - method.size() : 0, ' ');
    line.append(" \"").append(path).append("\"\n");
    writeAll(STDOUT_FILENO, line);
}

void rawError(std::string_view bytes)
{
    writeAll(STDERR_FILENO, bytes);
}

} // namespace demo
