#include "core/engine/EngineNote.h"

#include "core/engine/AppPaths.h"
#include "platform/async/Sleep.h"
#include "platform/files/RegularFile.h"
#include "platform/process/KnownProcess.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto idKey = "process"_L1;
constexpr auto birthKey = "started"_L1;
constexpr auto programKey = "program"_L1;

constexpr qint64 longestNote = 16 * 1024;
constexpr auto betweenLooks = 20ms;
// For the system to clear away what was killed.
constexpr auto afterKilling = 2s;

QString file()
{
    return AppPaths::applicationDir() + "/running-engine.json"_L1;
}

std::shared_ptr<const KnownProcess> notedEngine()
{
    const auto content = readRegularFile(file(), longestNote);
    if (!content)
        return nullptr;
    const QJsonObject note = QJsonDocument::fromJson(*content).object();
    const ProcessMark mark{note[idKey].toInt(), note[birthKey].toString().toUtf8(),
                           QByteArray::fromPercentEncoding(note[programKey].toString().toLatin1())};
    auto found = KnownProcess::find(mark);
    return found ? std::make_shared<const KnownProcess>(std::move(*found)) : nullptr;
}

Task<> waitForEnd(std::shared_ptr<const KnownProcess> engine, std::chrono::milliseconds limit, StopToken stop)
{
    QElapsedTimer clock;
    clock.start();
    while (!stop.stopRequested() && engine->isRunning() && !clock.hasExpired(limit.count()))
        co_await sleepFor(betweenLooks, stop);
}

} // namespace

void EngineNote::write(pid_t engine)
{
    m_engine = engine;
    const std::optional<ProcessMark> mark = ProcessMark::of(engine);
    if (!mark)
        return;
    const QJsonObject note{{idKey, mark->id},
                           {birthKey, QString::fromUtf8(mark->birth)},
                           {programKey, QString::fromLatin1(mark->program.toPercentEncoding("/"))}};
    AppPaths::ensure(AppPaths::applicationDir());
    // Half a note is none, and none outlives the machine's next start, so nothing waits for the disk here.
    // What else somebody has put there is not opened: a pipe would never let go.
    QFile::remove(file());
    QFile written(file());
    if (written.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        written.write(QJsonDocument(note).toJson());
}

void EngineNote::remove(pid_t engine)
{
    if (m_engine != engine)
        return;
    m_engine = 0;
    QFile::remove(file());
}

bool EngineNote::tellsOfOne()
{
    return notedEngine() != nullptr;
}

Task<> EngineNote::endNoted(std::chrono::milliseconds limit, StopToken stop)
{
    const auto engine = notedEngine();
    if (!engine)
        co_return;
    engine->terminate();
    co_await waitForEnd(engine, limit, stop);
    if (stop.stopRequested())
        co_return;
    engine->kill();
    co_await waitForEnd(engine, afterKilling, stop);
}
