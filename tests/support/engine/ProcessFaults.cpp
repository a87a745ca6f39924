#include "ProcessFaults.h"

#include "EngineLog.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

#include <unistd.h>

namespace demo {

namespace {

template <typename Action>
void after(std::chrono::milliseconds delay, Action action)
{
    std::thread([delay, action] {
        std::this_thread::sleep_for(delay);
        action();
    }).detach();
}

void chat(int linesPerSecond)
{
    std::thread([linesPerSecond] {
        const auto gap = std::chrono::microseconds(1'000'000 / std::max(linesPerSecond, 1));
        auto next = std::chrono::steady_clock::now();
        for (long line = 1;; ++line) {
            logLine("DEBUG", "sched.go:377", "chatty line " + std::to_string(line));
            next += gap;
            std::this_thread::sleep_until(next);
        }
    }).detach();
}

} // namespace

void startProcessFaults(const std::vector<Fault> &faults)
{
    const FaultSet set(faults);
    // Long enough for the answer to whoever asked for it at run time.
    const auto delay = [&set](const char *name) { return std::chrono::milliseconds(set.number(name, 100)); };
    if (set.has("exit-0")) {
        after(delay("exit-0"), [] { std::_Exit(0); });
    }
    if (set.has("exit-1")) {
        after(delay("exit-1"), [] {
            rawError("Error: the demonstration engine was asked to give up\n");
            std::_Exit(1);
        });
    }
    if (set.has("kill")) {
        after(delay("kill"), [] { ::kill(::getpid(), SIGKILL); });
    }
    if (set.has("log-lines")) {
        chat(set.number("log-lines", 100));
    }
    if (set.has("log-huge")) {
        rawError(std::string(static_cast<std::size_t>(set.number("log-huge", 1024 * 1024)), 'x'));
    }
    if (set.has("log-invalid-utf8")) {
        rawError("invalid: \xFF\xC3( after\n");
    }
}

} // namespace demo
