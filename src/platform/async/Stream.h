// A sequence of records that a producer pushes as they arrive and one consumer awaits one by one:
//     while (auto record = co_await stream.next()) …
// The buffer in between is unbounded. Main thread only.
#pragma once

#include "platform/async/MainThread.h"
#include "platform/async/Stop.h"

#include <coroutine>
#include <deque>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

template <class T>
class Stream
{
    struct State
    {
        std::deque<T> buffer;
        std::exception_ptr error;
        bool ended = false;
        std::coroutine_handle<> waiter;

        // One wake-up serves everything pushed in the same turn.
        void wake()
        {
            if (waiter)
                postToMain([resumed = std::exchange(waiter, {})] { resumed.resume(); });
        }
    };

public:
    // The producer's end. What is pushed after the end, or after the stream was dropped, vanishes.
    class Source
    {
    public:
        void push(T record) const
        {
            const auto state = m_state.lock();
            if (!state || state->ended)
                return;
            state->buffer.push_back(std::move(record));
            state->wake();
        }

        // The consumer sees the end behind everything pushed before.
        void finish() const { end({}); }
        // The consumer sees `error` thrown behind everything pushed before.
        void fail(std::exception_ptr error) const { end(std::move(error)); }

    private:
        friend class Stream;
        explicit Source(const std::shared_ptr<State> &state) : m_state(state) {}

        void end(std::exception_ptr error) const
        {
            const auto state = m_state.lock();
            if (!state || state->ended)
                return;
            state->ended = true;
            state->error = std::move(error);
            state->wake();
        }

        std::weak_ptr<State> m_state;
    };

    // The producer's token asks to stop when the stream is dropped, or when `stop` asks.
    explicit Stream(const StopToken &stop = {}) : m_state(std::make_shared<State>()), m_stop(stop) {}
    Stream(Stream &&other) = default;
    Stream &operator=(Stream &&) = delete;
    ~Stream()
    {
        if (m_state)
            m_stop.requestStop();
    }

    Source source() const { return Source(m_state); }
    StopToken producerToken() const { return m_stop.token(); }

    // To be awaited: the next record, or nothing at the end. Does not suspend while the buffer holds
    // something. Throws what the producer failed with.
    auto next() { return Awaiter{m_state}; }

private:
    struct Awaiter
    {
        std::shared_ptr<State> state;

        bool await_ready() const noexcept { return !state->buffer.empty() || state->ended; }
        void await_suspend(std::coroutine_handle<> waiter) const noexcept { state->waiter = waiter; }
        std::optional<T> await_resume() const
        {
            if (!state->buffer.empty()) {
                std::optional<T> record(std::move(state->buffer.front()));
                state->buffer.pop_front();
                return record;
            }
            if (state->error)
                std::rethrow_exception(std::exchange(state->error, {}));
            return std::nullopt;
        }
    };

    std::shared_ptr<State> m_state;
    StopSource m_stop;
};
