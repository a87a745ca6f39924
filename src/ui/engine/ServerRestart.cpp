#include "ui/engine/ServerRestart.h"

#include "core/engine/EngineManager.h"
#include "platform/async/Launch.h"
#include "platform/async/Sleep.h"

#include <QPointer>

namespace {

using namespace std::chrono_literals;

Task<> restart(QPointer<EngineManager> engine, StopToken stop)
{
    engine->stop();
    co_await sleepFor(800ms, stop);
    if (engine && !stop.stopRequested())
        co_await engine->start();
}

} // namespace

void restartServer(EngineManager &engine)
{
    launch([&engine] { return restart(&engine, quitToken()); });
}
