#include "platform/async/Stop.h"

#include <atomic>
#include <map>
#include <utility>

struct StopState
{
    std::atomic<bool> requested = false;
    std::map<int, std::function<void()>> callbacks;
    int lastId = 0;

    void request()
    {
        if (requested.exchange(true))
            return;
        // A callback may take back others, so each is taken out before it runs.
        while (!callbacks.empty()) {
            auto node = callbacks.extract(callbacks.begin());
            node.mapped()();
        }
    }
};

bool StopToken::stopRequested() const
{
    return m_state && m_state->requested;
}

StopCallback::StopCallback(const StopToken &token, std::function<void()> function) : m_state(token.m_state)
{
    if (!m_state)
        return;
    if (m_state->requested) {
        function();
        return;
    }
    m_id = ++m_state->lastId;
    m_state->callbacks.emplace(m_id, std::move(function));
}

StopCallback::~StopCallback()
{
    if (m_state)
        m_state->callbacks.erase(m_id);
}

StopSource::StopSource() : m_state(std::make_shared<StopState>()) {}

StopSource::StopSource(const StopToken &parent) : StopSource()
{
    // The parent outlives its children; it must not keep their state alive as well.
    const auto pass = [child = std::weak_ptr(m_state)] {
        if (const auto state = child.lock())
            state->request();
    };
    m_parent = std::make_shared<StopCallback>(parent, pass);
}

void StopSource::requestStop() const
{
    // Held here: a callback may drop the last source.
    const auto state = m_state;
    state->request();
}
