#include "RunningModels.h"

#include <algorithm>
#include <utility>

namespace demo {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto pollInterval = 10ms;

} // namespace

RunningModels::RunningModels(bool withRunners)
    : m_withRunners(withRunners), m_expirer([this] { expireLoop(); })
{
}

RunningModels::~RunningModels()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_stopped.notify_all();
    m_expirer.join();
}

RunningModels::Entry *RunningModels::find(const ModelName &name)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&name](const Entry &entry) { return entry.name == name; });
    return found == m_entries.end() ? nullptr : &*found;
}

void RunningModels::erase(const ModelName &name)
{
    std::erase_if(m_entries, [&name](const Entry &entry) { return entry.name == name; });
}

// True when the model is in memory as wanted; it is then in use.
bool RunningModels::joinLoaded(const LoadRequest &request)
{
    Entry *entry = find(request.name);
    if (entry == nullptr || entry->loading || entry->contextLength != request.contextLength) {
        return false;
    }
    ++entry->users;
    entry->keepAlive = request.keepAlive;
    return true;
}

// True when the caller is the one to load it. Another context length means loading anew.
bool RunningModels::beginLoading(const LoadRequest &request)
{
    if (const Entry *entry = find(request.name)) {
        if (entry->loading || entry->users > 0) {
            return false;
        }
        erase(request.name);
    }
    Entry entry;
    entry.name = request.name;
    entry.contextLength = request.contextLength;
    entry.keepAlive = request.keepAlive;
    m_entries.insert(m_entries.begin(), std::move(entry));
    return true;
}

std::optional<std::chrono::nanoseconds> RunningModels::acquire(const LoadRequest &request,
                                                               const Connection &client)
{
    const auto start = Clock::now();
    while (true) {
        {
            const std::lock_guard lock(m_mutex);
            if (joinLoaded(request)) {
                return Clock::now() - start;
            }
            if (beginLoading(request)) {
                break;
            }
        }
        if (!client.waitFor(pollInterval)) {
            return std::nullopt;
        }
    }
    auto runner = m_withRunners ? std::make_unique<RunnerProcess>() : nullptr;
    const bool whole = client.waitFor(request.loadTime);
    const std::lock_guard lock(m_mutex);
    Entry *entry = find(request.name);
    if (!whole || entry == nullptr || m_stop) {
        erase(request.name);
        return std::nullopt;
    }
    entry->loading = false;
    entry->users = 1;
    entry->runner = std::move(runner);
    return Clock::now() - start;
}

void RunningModels::release(const ModelName &name)
{
    const std::lock_guard lock(m_mutex);
    Entry *entry = find(name);
    if (entry == nullptr || entry->users == 0) {
        return;
    }
    --entry->users;
    entry->expiry = Clock::now() + entry->keepAlive.value_or(0ns);
}

void RunningModels::unload(const ModelName &name, std::chrono::milliseconds delay)
{
    const std::lock_guard lock(m_mutex);
    if (Entry *entry = find(name)) {
        entry->keepAlive = delay;
        entry->expiry = Clock::now() + delay;
    }
}

std::vector<RunningModel> RunningModels::list() const
{
    const std::lock_guard lock(m_mutex);
    const auto now = Clock::now();
    const WallTime wallNow = std::chrono::system_clock::now();
    std::vector<RunningModel> models;
    for (const Entry &entry : m_entries) {
        if (entry.loading) {
            continue;
        }
        std::chrono::nanoseconds left = std::chrono::hours(24 * 365 * 100);
        if (entry.keepAlive) {
            left = entry.users > 0 ? *entry.keepAlive : entry.expiry - now;
        }
        const auto expiresAt = wallNow + std::chrono::duration_cast<WallTime::duration>(left);
        models.push_back(RunningModel{entry.name, entry.contextLength, expiresAt});
    }
    return models;
}

void RunningModels::endRunners()
{
    const std::lock_guard lock(m_mutex);
    m_stop = true;
    m_entries.clear();
}

void RunningModels::dropExpired()
{
    const auto now = Clock::now();
    std::erase_if(m_entries, [now](const Entry &entry) {
        return !entry.loading && entry.users == 0 && entry.keepAlive && entry.expiry <= now;
    });
}

void RunningModels::expireLoop()
{
    std::unique_lock lock(m_mutex);
    while (!m_stopped.wait_for(lock, pollInterval, [this] { return m_stop; })) {
        dropExpired();
    }
}

} // namespace demo
