// Runs functions on a few background threads and brings their results back to the main thread.
#pragma once

#include "platform/async/Completion.h"
#include "platform/async/MainThread.h"
#include "platform/async/Task.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <type_traits>
#include <variant>
#include <vector>

class WorkerQueue
{
public:
    // `threads` is at least 1. They start with the first function.
    explicit WorkerQueue(int threads);
    // Waits for the functions that were queued, all of which still run.
    ~WorkerQueue();

    // The program's own queue; it lives until the process ends.
    static WorkerQueue &shared();

    // Queues `function` for a background thread. Any thread.
    void post(std::function<void()> function);

    // Runs `function` on a background thread and returns its result, or throws what it threw. Main thread.
    template <class F>
    auto run(F function) -> Task<std::invoke_result_t<F>>
    {
        using Result = std::invoke_result_t<F>;
        using Value = std::conditional_t<std::is_void_v<Result>, std::monostate, Result>;
        const Completion<Value> done;
        // By reference: this frame waits until the background thread has used both, and the completion's
        // count is touched on the main thread alone.
        const auto work = [&function, &done] {
            try {
                if constexpr (std::is_void_v<Result>) {
                    function();
                    postToMain([&done] { done.complete(); });
                } else {
                    auto result = std::make_shared<Result>(function());
                    postToMain([&done, result] { done.complete(std::move(*result)); });
                }
            } catch (...) {
                postToMain([&done, error = std::current_exception()] { done.fail(error); });
            }
        };
        post(work);
        if constexpr (std::is_void_v<Result>)
            co_await done.wait();
        else
            co_return co_await done.wait();
    }

private:
    void work();

    const int m_limit;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_waiting;
    std::vector<std::thread> m_threads;
    int m_idle = 0;
    bool m_ending = false;
};
