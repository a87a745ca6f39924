#pragma once

// Every request that reached the engine, for tests to look at: what was asked, and how it ended.

#include <QJsonArray>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace demo {

class RequestLog
{
public:
    enum class State
    {
        running,
        finished,
        // The client went away first.
        cut,
        // The engine itself broke it off, as it was told to.
        faulted,
    };

    RequestLog();

    std::uint64_t begin(std::string method, std::string path, std::string body);
    // Only the first end of a request counts.
    void end(std::uint64_t id, State state, int status);
    void clear();
    int runningCount() const;

    // Objects with "id", "method", "path", "body", "state", "status", "startedMs" and "endedMs" (since the
    // engine's start), in order of arrival.
    QJsonArray toJson() const;

private:
    struct Entry
    {
        std::uint64_t id = 0;
        std::string method;
        std::string path;
        std::string body;
        State state = State::running;
        int status = 0;
        std::chrono::steady_clock::time_point started;
        std::chrono::steady_clock::time_point ended;
    };

    const std::chrono::steady_clock::time_point m_start;
    mutable std::mutex m_mutex;
    std::uint64_t m_lastId = 0;
    int m_running = 0;
    std::vector<Entry> m_entries;
};

} // namespace demo
