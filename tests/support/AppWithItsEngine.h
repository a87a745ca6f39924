// The whole program short of its windows, in a sandbox, with the stand-in engine as the one it launches
// itself.
#pragma once

#include "core/app/AppState.h"
#include "support/FakeDesktop.h"
#include "support/Sandbox.h"

#include <QString>

#include <optional>

class AppWithItsEngine
{
public:
    // The engine is the chosen one, on a free port, and takes no time of its own.
    AppWithItsEngine();

    // Makes the state, which goes by `dependencies`.
    void launch() { m_state.emplace(dependencies); }
    void drop() { m_state.reset(); }
    AppState *operator->() { return &*m_state; }
    AppState &operator*() { return *m_state; }

    bool runs() { return m_state->engine().state().kind == EngineManager::State::running; }
    // Wants the engine, and waits until it runs; false when it does not come to that.
    bool starts();
    // Asks for a model and waits until its pull has ended, one way or the other; false when it does not.
    bool pullEnds(const QString &model);
    // Why the pull of a model failed; empty when it did not.
    QString pullFailure(const QString &model);

    Sandbox sandbox;
    FakeDesktop desktop;
    AppState::Dependencies dependencies;

private:
    std::optional<AppState> m_state;
};
