#include "core/app/Shutdown.h"

#include "core/chat/ChatStore.h"
#include "core/engine/ChildProcessHolder.h"
#include "core/engine/RunProcess.h"
#include "platform/async/Launch.h"

#include <QElapsedTimer>

#include <algorithm>

Task<> shutDown(ChatStore &chats, std::chrono::milliseconds limit)
{
    QElapsedTimer clock;
    clock.start();
    beginQuitting();
    ChildProcessHolder::shared().terminate();
    endShortLivedChildren();

    // A reply that is stopped saves what arrived of it, so the saves are waited for behind the tasks.
    co_await allTasksEnded(limit);
    const std::chrono::milliseconds left = limit - std::chrono::milliseconds(clock.elapsed());
    const auto atLeastNothing = std::max(left, std::chrono::milliseconds(0));
    co_await chats.savesWritten(atLeastNothing);
}
