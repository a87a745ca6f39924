// Waiting for time to pass, without blocking.
#pragma once

#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <chrono>

// Returns after `duration`, or as soon as `stop` asks, whichever comes first; never throws.
Task<> sleepFor(std::chrono::milliseconds duration, StopToken stop = {});
