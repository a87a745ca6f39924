#pragma once

// The child process that holds one loaded model. It only sleeps; it is there so that what an engine leaves
// behind in its process group can be seen and ended.

#include <sys/types.h>

namespace demo {

class RunnerProcess
{
public:
    // Starts one; without effect where the system refuses.
    RunnerProcess();
    ~RunnerProcess();
    RunnerProcess(const RunnerProcess &) = delete;
    RunnerProcess &operator=(const RunnerProcess &) = delete;

    pid_t id() const { return m_id; }

private:
    pid_t m_id = -1;
};

// What the child does: sleep until it is ended, ten minutes at most. With DEMO_ENGINE_RUNNER=2 beside a child
// of its own, which is hard to get at.
int runnerMain();

} // namespace demo
