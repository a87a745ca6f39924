// The whole program short of its windows, in a sandbox, on a stand-in engine that runs.
#pragma once

#include "core/app/AppState.h"
#include "support/DemoEngine.h"
#include "support/FakeDesktop.h"
#include "support/Sandbox.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>

class AppUnderTest
{
public:
    // The engine is set up by `variables` beside a quick pace; the state has found it, and its models, when
    // this returns. `longWait` is the state's.
    explicit AppUnderTest(const QMap<QString, QString> &variables = {},
                          std::chrono::milliseconds longWait = std::chrono::hours(1));

    AppState *operator->() { return &*m_state; }
    AppState &operator*() { return *m_state; }
    // Gives up the state, as when the program ends.
    void drop() { m_state.reset(); }
    // A new state on the same files.
    void launch();

    // The engine's pace from now on, for example {"loadMs":60000}.
    void setPace(const QByteArray &json) const { demo.call("POST", QStringLiteral("/demo/settings"), json); }
    AppState::Dependencies dependencies();

    // A model that the engine has from now on, or has in its memory.
    void addModel(const QString &model) const;
    void loadModel(const QString &model) const;
    // Waits until nothing runs any more but the state's loop; false when that does not come.
    static bool settles(int milliseconds = 30'000);

    QUuid newConversation(const QString &model = QStringLiteral("phi3.5"));
    // The texts of a conversation's messages.
    QStringList contents(const QUuid &id);
    // Waits until no reply streams; false when that does not come.
    bool replyEnds();
    // Sends `text` and waits for the end of the reply.
    bool isAnswered(const QString &text, const QUuid &id);
    // What the next launch would read of a conversation.
    std::optional<Conversation> saved(const QUuid &id);

    Sandbox sandbox;
    FakeDesktop desktop;
    DemoEngine demo;

private:
    const std::chrono::milliseconds m_longWait;
    std::optional<AppState> m_state;
};
