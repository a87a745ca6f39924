#pragma once

// How this run of the engine was set up from outside: its address and folders, and the pace of what it
// plays. All of it comes from environment variables.

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace demo {

struct EngineAddress
{
    std::string host = "127.0.0.1";
    int port = 11434;

    bool operator==(const EngineAddress &) const = default;
};

struct EngineSettings
{
    EngineAddress address;
    std::filesystem::path modelsFolder;
    std::string version;
    std::chrono::milliseconds discoveryDelay{150};
    bool runner = false;
    std::string faults;
    std::vector<std::string> installed;
};

// What tests change while the engine runs; readable and writable from any thread.
struct Pace
{
    std::atomic<int> pullMs{6000};
    std::atomic<int> loadMs{600};
    std::atomic<int> unloadMs{1500};
    std::atomic<int> chunkMs{25};
    std::atomic<int> chunkBytes{8};
};

// "host:port", ":port", a host alone, or a whole http address; what cannot be read takes the default.
EngineAddress parseAddress(const std::string &text);

EngineSettings settingsFromEnvironment();
void readPaceFromEnvironment(Pace &pace);

} // namespace demo
