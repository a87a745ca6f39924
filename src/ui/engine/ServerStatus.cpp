#include "ui/engine/ServerStatus.h"

#include <QCoreApplication>

ServerStatus serverStatus(EngineManager::State::Kind kind)
{
    using State = EngineManager::State;
    switch (kind) {
    case State::notInstalled:
        return {QCoreApplication::translate("ServerStatus", "Ollama not installed"), Tint::grey};
    case State::stopped:
        break;
    case State::starting:
        return {QCoreApplication::translate("ServerStatus", "Starting…"), Tint::orange};
    case State::running:
        return {QCoreApplication::translate("ServerStatus", "Running"), Tint::green};
    case State::failed:
        return {QCoreApplication::translate("ServerStatus", "Problem"), Tint::red};
    }
    return {QCoreApplication::translate("ServerStatus", "Stopped"), Tint::grey};
}

QString serverRemark(const EngineManager &engine)
{
    if (engine.previousIsEnding())
        return QCoreApplication::translate("ServerStatus", "The previous engine is still ending…");
    const AdoptedServer *const server = engine.adoptedServer();
    if (!server)
        return {};
    return server->isAnotherUsers()
               ? QCoreApplication::translate(
                     "ServerStatus", "This server belongs to a program of another user. Whether it is "
                                     "shared on the network, and where its models are kept, is up to "
                                     "that program.")
               : QCoreApplication::translate(
                     "ServerStatus", "This server belongs to another program. Whether it is shared on "
                                     "the network, and where its models are kept, is up to that "
                                     "program.");
}
