// The one door through which a task is started without being awaited, and the count of what still runs.
#pragma once

#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <chrono>
#include <functional>

// Calls `start` and watches the task it returns: an exception that escapes the task is logged, and the task
// counts as running until it ends. Once quitting has begun nothing is started any more; false is returned
// then.
bool launch(const std::function<Task<>()> &start);

// How many launched tasks have not ended yet.
int runningTasks();

// Asked to stop when quitting begins. Every token a long wait looks at should descend from it.
StopToken quitToken();

// From now on launch() refuses, and quitToken() asks to stop.
void beginQuitting();

// Returns true as soon as no launched task runs any more, false after `limit`.
Task<bool> allTasksEnded(std::chrono::milliseconds limit);

// Undoes beginQuitting(), for programs that quit more than once, as tests do.
void resumeAfterQuitting();
