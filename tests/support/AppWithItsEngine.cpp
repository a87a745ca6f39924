#include "support/AppWithItsEngine.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 30'000; // ms

} // namespace

AppWithItsEngine::AppWithItsEngine()
    : dependencies{.defaults = sandbox.defaults(),
                   .desktop = desktop,
                   .chatsFolder = sandbox.path(u"chats"_s),
                   .engine = Sandbox::engineOptions(),
                   .statusPause = std::chrono::milliseconds(20)}
{
    for (const char *const pace : {"DEMO_ENGINE_PULL_MS", "DEMO_ENGINE_LOAD_MS", "DEMO_ENGINE_CHUNK_MS"})
        qputenv(pace, "0");
    qputenv("DEMO_ENGINE_READY_MS", "10");
    sandbox.chooseEngine();
}

bool AppWithItsEngine::starts()
{
    m_state->setServer(true);
    return QTest::qWaitFor([this] { return runs(); }, patience);
}

bool AppWithItsEngine::pullEnds(const QString &model)
{
    m_state->queue().enqueue(model, {});
    const auto ended = [this, &model] {
        const DownloadItem *const item = m_state->queue().item(model);
        return !item || item->phase.kind == DownloadItem::Phase::failed;
    };
    return QTest::qWaitFor(ended, patience);
}

QString AppWithItsEngine::pullFailure(const QString &model)
{
    const DownloadItem *const item = m_state->queue().item(model);
    return item ? item->phase.message : QString();
}
