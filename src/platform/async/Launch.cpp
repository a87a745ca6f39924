#include "platform/async/Launch.h"

#include "platform/async/Completion.h"
#include "platform/error/Error.h"

#include <QLoggingCategory>
#include <QTimer>

namespace {

Q_LOGGING_CATEGORY(asyncLog, "tarnwick.async")

struct Registry
{
    int running = 0;
    bool quitting = false;
    StopSource quit;
    std::optional<Completion<bool>> idle;
};

Registry &registry()
{
    static Registry instance;
    return instance;
}

Task<> supervise(Task<> task)
{
    try {
        co_await task;
    } catch (...) {
        qCWarning(asyncLog) << "A task ended with an error nobody handled:"
                            << errorDescription(std::current_exception());
    }
    Registry &tasks = registry();
    if (--tasks.running == 0 && tasks.idle)
        tasks.idle->complete(true);
}

} // namespace

bool launch(const std::function<Task<>()> &start)
{
    Registry &tasks = registry();
    if (tasks.quitting)
        return false;
    ++tasks.running;
    supervise(start());
    return true;
}

int runningTasks()
{
    return registry().running;
}

StopToken quitToken()
{
    return registry().quit.token();
}

void beginQuitting()
{
    registry().quitting = true;
    registry().quit.requestStop();
}

Task<bool> allTasksEnded(std::chrono::milliseconds limit)
{
    if (runningTasks() == 0)
        co_return true;
    const Completion<bool> idle;
    registry().idle = idle;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [idle] { idle.complete(false); });
    timer.start(limit);
    const bool ended = co_await idle.wait();
    registry().idle.reset();
    co_return ended;
}

void resumeAfterQuitting()
{
    registry().quitting = false;
    registry().quit = StopSource();
}
