#include "platform/async/Sleep.h"

#include "platform/async/Completion.h"

#include <QTimer>

Task<> sleepFor(std::chrono::milliseconds duration, StopToken stop)
{
    const Completion<> over;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [over] { over.complete(); });
    timer.start(duration);
    const StopCallback stopped(stop, [over] { over.complete(); });
    co_await over.wait();
}
