// Waiting for tasks from a test function.
#pragma once

#include "platform/async/Launch.h"
#include "platform/async/Task.h"

#include <QTest>

#include <exception>
#include <memory>
#include <optional>
#include <variant>

namespace waiting {

template <class T>
struct Outcome
{
    std::optional<T> value;
    std::exception_ptr error;
};

template <class T>
Task<> collect(Task<T> task, std::shared_ptr<Outcome<T>> outcome)
{
    try {
        outcome->value = co_await task;
    } catch (...) {
        outcome->error = std::current_exception();
    }
}

inline Task<> collectVoid(Task<> task, std::shared_ptr<Outcome<std::monostate>> outcome)
{
    try {
        co_await task;
        outcome->value.emplace();
    } catch (...) {
        outcome->error = std::current_exception();
    }
}

template <class T>
T settle(const std::shared_ptr<Outcome<T>> &outcome, int milliseconds)
{
    const bool ended = QTest::qWaitFor([&] { return outcome->value || outcome->error; }, milliseconds);
    if (!ended)
        qFatal("A task did not end within %d ms", milliseconds);
    if (outcome->error)
        std::rethrow_exception(outcome->error);
    return std::move(*outcome->value);
}

} // namespace waiting

// Runs the event loop until `task` has ended; returns its result or throws what it threw. A task that does
// not end within `milliseconds` ends the test program.
template <class T>
T waitFor(Task<T> task, int milliseconds = 30'000)
{
    const auto outcome = std::make_shared<waiting::Outcome<T>>();
    waiting::collect<T>(std::move(task), outcome);
    return waiting::settle(outcome, milliseconds);
}

inline void waitFor(Task<> task, int milliseconds = 30'000)
{
    const auto outcome = std::make_shared<waiting::Outcome<std::monostate>>();
    waiting::collectVoid(std::move(task), outcome);
    waiting::settle(outcome, milliseconds);
}
