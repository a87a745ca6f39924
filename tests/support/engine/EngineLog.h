#pragma once

// What the engine prints: structured lines on standard error, access lines on standard output.

#include <chrono>
#include <string>
#include <string_view>

namespace demo {

// All of these may be called from any thread; a line is never torn by another one.
void logLine(std::string_view level, std::string_view source, std::string_view message);
void accessLine(int status, std::chrono::nanoseconds took, std::string_view client, std::string_view method,
                std::string_view path);
void rawError(std::string_view bytes);

} // namespace demo
