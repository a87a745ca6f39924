#include "support/EngineUnderTest.h"

#include "support/RunningChild.h"
#include "support/Waiting.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 30'000; // ms
const QByteArray quick = "20";

} // namespace

EngineUnderTest::EngineUnderTest(const QString &script, const EngineOptions &options)
{
    qputenv("DEMO_ENGINE_READY_MS", quick);
    sandbox.chooseEngine(); // also for a script: on a free port
    if (!script.isEmpty())
        sandbox.chooseScript(script);
    remake(options);
}

EngineUnderTest::~EngineUnderTest()
{
    if (m_manager)
        m_manager->stop();
    else
        ChildProcessHolder::shared().terminate();
    if (!QTest::qWaitFor(hasNoChildren, patience))
        qFatal("The engine did not end");
    qunsetenv("DEMO_ENGINE_FAULT");
}

void EngineUnderTest::remake(const EngineOptions &options)
{
    m_manager.emplace(sandbox.defaults(), options);
    states.clear();
    QObject::connect(&*m_manager, &EngineManager::stateChanged, &*m_manager,
                     [this] { states << m_manager->state(); });
}

void EngineUnderTest::start()
{
    ::waitFor(m_manager->start());
}

Task<> EngineUnderTest::startSlowly()
{
    qputenv("DEMO_ENGINE_READY_MS", "600000");
    auto starting = m_manager->start();
    if (!QTest::qWaitFor([this] { return !m_manager->logLines().isEmpty(); }, patience))
        qFatal("The engine says nothing");
    qputenv("DEMO_ENGINE_READY_MS", quick);
    return starting;
}

int EngineUnderTest::engineId() const
{
    QFile file(sandbox.path(u"engine program.pid"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toInt() : 0;
}
