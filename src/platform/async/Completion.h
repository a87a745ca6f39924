// A result that arrives once and that one coroutine waits for; the primitive below every other wait of the
// program. Main thread only. Copies share the result.
#pragma once

#include "platform/async/MainThread.h"

#include <coroutine>
#include <exception>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

template <class T = std::monostate>
class Completion
{
public:
    Completion() : m_state(std::make_shared<State>()) {}

    // The first call decides; later ones, and those of fail(), are ignored. The waiter goes on in a later
    // turn of the event loop, never inside the call.
    void complete(T value = {}) const
    {
        if (isDone())
            return;
        m_state->value = std::move(value);
        wake();
    }

    // The waiter sees `error` thrown.
    void fail(std::exception_ptr error) const
    {
        if (isDone())
            return;
        m_state->error = std::move(error);
        wake();
    }

    bool isDone() const { return m_state->value || m_state->error; }

    // To be awaited, by one coroutine, once.
    auto wait() const { return Awaiter{m_state}; }

private:
    struct State
    {
        std::optional<T> value;
        std::exception_ptr error;
        std::coroutine_handle<> waiter;
    };

    struct Awaiter
    {
        std::shared_ptr<State> state;

        bool await_ready() const noexcept { return state->value || state->error; }
        void await_suspend(std::coroutine_handle<> waiter) const noexcept { state->waiter = waiter; }
        T await_resume() const
        {
            if (state->error)
                std::rethrow_exception(state->error);
            return std::move(*state->value);
        }
    };

    void wake() const
    {
        if (m_state->waiter)
            postToMain([waiter = std::exchange(m_state->waiter, {})] { waiter.resume(); });
    }

    std::shared_ptr<State> m_state;
};
