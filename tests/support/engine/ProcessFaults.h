#pragma once

// Faults of the engine as a process: dying, refusing to die, talking too much.

#include "FaultPlan.h"

#include <vector>

namespace demo {

// Sets those going that happen by themselves; each goes on in a thread of its own until the process ends.
void startProcessFaults(const std::vector<Fault> &faults);

} // namespace demo
