// Cooperative cancellation in the shape of the standard's stop tokens, which not every C++ library has yet.
// A source asks, tokens are passed by value and looked at. The flag may be read from any thread; everything
// else belongs to the main thread.
#pragma once

#include <functional>
#include <memory>

struct StopState;

class StopToken
{
public:
    // A token that never asks for anything.
    StopToken() = default;

    bool stopRequested() const;

private:
    friend class StopSource;
    friend class StopCallback;
    explicit StopToken(std::shared_ptr<StopState> state) : m_state(std::move(state)) {}

    std::shared_ptr<StopState> m_state;
};

// Calls a function once when its token's source asks to stop, inside requestStop(); at once, inside the
// constructor, when that has happened already. Destroying the callback takes the function back.
class StopCallback
{
public:
    StopCallback(const StopToken &token, std::function<void()> function);
    ~StopCallback();
    StopCallback(const StopCallback &) = delete;
    StopCallback &operator=(const StopCallback &) = delete;

private:
    std::shared_ptr<StopState> m_state;
    int m_id = 0;
};

// Dropping the last copy of a source asks for nothing: owners ask in their destructors.
class StopSource
{
public:
    StopSource();
    // A source that also asks when `parent` does.
    explicit StopSource(const StopToken &parent);

    StopToken token() const { return StopToken(m_state); }
    bool stopRequested() const { return token().stopRequested(); }
    void requestStop() const;

private:
    std::shared_ptr<StopState> m_state;
    std::shared_ptr<StopCallback> m_parent;
};
