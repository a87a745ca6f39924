#include "core/engine/LaunchedEngines.h"

#include "core/engine/ChildProcessHolder.h"
#include "platform/async/Launch.h"
#include "platform/async/Sleep.h"

#include <QPointer>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {

// Some 20 ms would do.
constexpr auto forWritingDown = 250ms;
// For the system to clear away what was killed.
constexpr auto afterKilling = 2s;

// Quitting waits for it, so it looks at no token.
Task<> terminateSoon(std::shared_ptr<ChildProcess> process)
{
    co_await sleepFor(forWritingDown);
    process->terminate();
}

} // namespace

LaunchedEngines::LaunchedEngines(ChildProcessHolder &holder, QObject *parent)
    : QObject(parent), m_holder(holder)
{
}

void LaunchedEngines::launch(const ChildProcess::Command &command, int port)
{
    const QPointer<LaunchedEngines> self(this);
    const int number = ++m_launched;
    m_heard = number;
    const auto onOutput = [self, number](const QByteArray &output) {
        if (self && self->m_heard == number)
            Q_EMIT self->wrote(output);
    };
    const auto onEnd = [self, number](int) {
        if (self)
            self->takeEnd(number);
    };
    m_current = Engine{ChildProcess::start(command, onOutput, onEnd), port, number};
    m_holder.set(m_current->process);
    noteCurrent();
}

void LaunchedEngines::noteCurrent()
{
    if (m_current)
        m_note.write(m_current->process->programId());
}

void LaunchedEngines::retire(bool lostPull)
{
    // First, so that the coming end is not taken for a crash.
    const std::optional<Engine> engine = std::exchange(m_current, std::nullopt);
    if (!engine)
        return;
    m_ending.append(*engine);
    m_holder.clear();
    const auto &process = engine->process;
    if (!lostPull || !::launch([&process] { return terminateSoon(process); }))
        process->terminate();
}

void LaunchedEngines::takeEnd(int number)
{
    const auto isIt = [number](const Engine &engine) { return engine.number == number; };
    const auto old = std::find_if(m_ending.begin(), m_ending.end(), isIt);
    if (old != m_ending.end()) {
        m_note.remove(old->process->programId());
        m_ending.erase(old);
        if (m_ending.isEmpty())
            m_noneEnding.requestStop();
    } else if (m_current && m_current->number == number) {
        m_note.remove(m_current->process->programId());
        m_current.reset();
        m_holder.clear();
        Q_EMIT endedByItself();
    }
}

bool LaunchedEngines::areOldOnesLeft() const
{
    return !m_ending.isEmpty() || (!m_current && EngineNote::tellsOfOne());
}

bool LaunchedEngines::oldOnesHold(int port) const
{
    const auto usesIt = [port](const Engine &engine) { return engine.port == port; };
    return std::any_of(m_ending.begin(), m_ending.end(), usesIt);
}

Task<> LaunchedEngines::oldOnesEnded(std::chrono::milliseconds limit, StopToken stop)
{
    co_await childrenEnded(limit, stop);
    if (stop.stopRequested())
        co_return;
    for (const Engine &engine : std::as_const(m_ending))
        engine.process->kill();
    co_await childrenEnded(afterKilling, stop);
    if (!stop.stopRequested() && !m_current)
        co_await EngineNote::endNoted(limit, stop);
}

Task<> LaunchedEngines::childrenEnded(std::chrono::milliseconds limit, StopToken stop)
{
    if (m_ending.isEmpty() || stop.stopRequested())
        co_return;
    m_noneEnding = StopSource(stop);
    const StopToken noneEnding = m_noneEnding.token();
    co_await sleepFor(limit, noneEnding);
}
