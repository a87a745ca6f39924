#include "RequestLog.h"

#include "Json.h"

#include <algorithm>
#include <utility>

namespace demo {

using namespace Qt::StringLiterals;
using Clock = std::chrono::steady_clock;

namespace {

// A test polls for minutes at worst; what is older than this nobody looks at.
constexpr std::size_t mostEntries = 20'000;

QLatin1StringView stateText(RequestLog::State state)
{
    switch (state) {
    case RequestLog::State::running:
        return "running"_L1;
    case RequestLog::State::finished:
        return "finished"_L1;
    case RequestLog::State::cut:
        return "cut"_L1;
    case RequestLog::State::faulted:
        return "faulted"_L1;
    }
    return {};
}

} // namespace

RequestLog::RequestLog() : m_start(Clock::now()) {}

std::uint64_t RequestLog::begin(std::string method, std::string path, std::string body)
{
    const std::lock_guard lock(m_mutex);
    if (m_entries.size() >= mostEntries) {
        m_entries.erase(m_entries.begin(), m_entries.begin() + mostEntries / 2);
    }
    Entry entry;
    entry.id = ++m_lastId;
    entry.method = std::move(method);
    entry.path = std::move(path);
    entry.body = std::move(body);
    entry.started = Clock::now();
    m_entries.push_back(std::move(entry));
    ++m_running;
    return m_lastId;
}

void RequestLog::end(std::uint64_t id, State state, int status)
{
    const std::lock_guard lock(m_mutex);
    --m_running;
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(), [id](const Entry &entry) { return entry.id == id; });
    if (found != m_entries.end() && found->state == State::running) {
        found->state = state;
        found->status = status;
        found->ended = Clock::now();
    }
}

void RequestLog::clear()
{
    const std::lock_guard lock(m_mutex);
    m_entries.clear();
}

int RequestLog::runningCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_running;
}

QJsonArray RequestLog::toJson() const
{
    const std::lock_guard lock(m_mutex);
    const auto sinceStart = [this](Clock::time_point time) {
        return std::chrono::duration<double, std::milli>(time - m_start).count();
    };
    QJsonArray array;
    for (const Entry &entry : m_entries) {
        QJsonObject object{{"id"_L1, static_cast<qint64>(entry.id)},
                           {"method"_L1, toQt(entry.method)},
                           {"path"_L1, toQt(entry.path)},
                           {"body"_L1, toQt(entry.body)},
                           {"state"_L1, stateText(entry.state)},
                           {"startedMs"_L1, sinceStart(entry.started)}};
        if (entry.state != State::running) {
            object.insert("status"_L1, entry.status);
            object.insert("endedMs"_L1, sinceStart(entry.ended));
        }
        array.append(object);
    }
    return array;
}

} // namespace demo
