#include "core/app/Shutdown.h"

#include "core/app/AppState.h"
#include "core/engine/RunProcess.h"
#include "platform/async/Launch.h"

#include <QElapsedTimer>

#include <algorithm>

Task<> shutDown(AppState &state, std::chrono::milliseconds limit)
{
    QElapsedTimer clock;
    clock.start();
    // First, since a pull may have to be ended before, and that takes a task.
    state.engine().stop();
    beginQuitting();
    endShortLivedChildren();

    // A reply that is stopped saves what arrived of it, so the saves are waited for behind the tasks.
    co_await allTasksEnded(limit);
    const std::chrono::milliseconds left = limit - std::chrono::milliseconds(clock.elapsed());
    const auto atLeastNothing = std::max(left, std::chrono::milliseconds(0));
    co_await state.chats().savesWritten(atLeastNothing);
}
