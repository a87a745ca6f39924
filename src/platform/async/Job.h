// A running operation that can be cancelled: the task together with the source that stops it.
#pragma once

#include "platform/async/Launch.h"
#include "platform/async/Stop.h"

#include <functional>
#include <memory>

// A small handle; copies stand for the same operation. Dropping it neither stops nor waits.
class Job
{
public:
    // No operation: not running, and stopping it does nothing.
    Job() = default;

    // Launches `start` with a token that asks when requestStop() is called or when the program quits.
    explicit Job(const std::function<Task<>(StopToken)> &start);

    void requestStop() const;

private:
    std::shared_ptr<StopSource> m_stop;
};
