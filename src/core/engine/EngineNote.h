// The note of the engine that runs, in the application folder. By it the program recognises an engine that an
// earlier run of its own has left behind, and ends it.
#pragma once

#include "platform/async/Stop.h"
#include "platform/async/Task.h"

#include <chrono>

#include <sys/types.h>

// Main thread.
class EngineNote
{
public:
    // Notes the engine with that process id, in the place of any other. Failures are silent: the note serves
    // a run that ends without a word.
    void write(pid_t engine);
    // The engine with that process id has ended; does nothing when another one is noted.
    void remove(pid_t engine);

    // Whether an engine that was noted still lives.
    static bool tellsOfOne();
    // Asks such an engine to end and returns when it has, or when `stop` asks. What has not ended after
    // `limit` is killed, with its process group. A note that does not fit, or cannot be read, hits nobody.
    static Task<> endNoted(std::chrono::milliseconds limit, StopToken stop);

private:
    pid_t m_engine = 0;
};
