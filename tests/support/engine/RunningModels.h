#pragma once

// The models in memory: loading them, keeping them for as long as was asked, dropping them.

#include "Connection.h"
#include "ModelName.h"
#include "RunnerProcess.h"
#include "Timestamps.h"

#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace demo {

// Nothing: for ever.
using KeepAlive = std::optional<std::chrono::nanoseconds>;

struct LoadRequest
{
    ModelName name;
    qint64 contextLength = 4096;
    KeepAlive keepAlive;
    std::chrono::milliseconds loadTime{0};
};

struct RunningModel
{
    ModelName name;
    qint64 contextLength = 0;
    WallTime expiresAt;
};

class RunningModels
{
public:
    explicit RunningModels(bool withRunners);
    ~RunningModels();
    RunningModels(const RunningModels &) = delete;
    RunningModels &operator=(const RunningModels &) = delete;

    // Loads the model, or finds it loaded, and keeps it until `release`. Returns how long that took, or
    // nothing when the client went away meanwhile. Blocks.
    std::optional<std::chrono::nanoseconds> acquire(const LoadRequest &request, const Connection &client);
    void release(const ModelName &name);
    // The model leaves after `delay`, once nobody uses it.
    void unload(const ModelName &name, std::chrono::milliseconds delay);

    // Those that have finished loading, the last loaded first.
    std::vector<RunningModel> list() const;
    void endRunners();

private:
    struct Entry
    {
        ModelName name;
        qint64 contextLength = 0;
        bool loading = true;
        int users = 0;
        KeepAlive keepAlive;
        std::chrono::steady_clock::time_point expiry;
        std::unique_ptr<RunnerProcess> runner;
    };

    Entry *find(const ModelName &name);
    void erase(const ModelName &name);
    bool joinLoaded(const LoadRequest &request);
    bool beginLoading(const LoadRequest &request);
    void expireLoop();
    void dropExpired();

    const bool m_withRunners;
    mutable std::mutex m_mutex;
    std::condition_variable m_stopped;
    bool m_stop = false;
    std::vector<Entry> m_entries;
    std::thread m_expirer;
};

} // namespace demo
