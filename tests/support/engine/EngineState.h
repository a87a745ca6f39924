#pragma once

// What all endpoints of one engine share. Every part may be used from any thread.

#include "EngineSettings.h"
#include "FaultPlan.h"
#include "ModelStore.h"
#include "RequestLog.h"
#include "RunningModels.h"

namespace demo {

struct EngineState
{
    explicit EngineState(const EngineSettings &engineSettings)
        : settings(engineSettings), store(engineSettings.modelsFolder), running(engineSettings.runner)
    {
        readPaceFromEnvironment(pace);
    }

    const EngineSettings settings;
    Pace pace;
    FaultPlan faults;
    ModelStore store;
    RunningModels running;
    RequestLog requests;
};

} // namespace demo
