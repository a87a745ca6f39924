// The order of quitting.
#pragma once

#include "platform/async/Task.h"

#include <chrono>

class AppState;

// Begins quitting: from now on no task starts, every running one is asked to stop, and the engine is asked to
// end without being waited for; one in which a pull runs has a moment for that first. Returns once the tasks
// have ended and the pending saves are written, or after `limit`. The application may then leave its event
// loop. A save that is still being written by then is ended by the store's destructor.
Task<> shutDown(AppState &state, std::chrono::milliseconds limit = std::chrono::seconds(2));
