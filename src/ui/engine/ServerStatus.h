// How the engine's state is named and coloured wherever it shows.
#pragma once

#include "core/engine/EngineManager.h"
#include "ui/widgets/Tint.h"

#include <QString>

struct ServerStatus
{
    QString text;
    Tint tint = Tint::grey; // of the status dot
};

ServerStatus serverStatus(EngineManager::State::Kind kind);

// What else there is to say of a server that starts or runs; empty where its state says all.
QString serverRemark(const EngineManager &engine);
