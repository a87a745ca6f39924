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
