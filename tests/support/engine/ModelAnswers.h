#pragma once

// The endpoints that answer at once: what is installed, what is loaded, one model's details, unloading and
// deleting.

#include "EngineState.h"
#include "Exchange.h"

#include <QJsonObject>

namespace demo {

void listInstalled(EngineState &state, Exchange &exchange);
void listRunning(EngineState &state, Exchange &exchange);
void showModel(EngineState &state, Exchange &exchange, const QJsonObject &body);
void unloadModel(EngineState &state, Exchange &exchange, const QJsonObject &body);
void deleteModel(EngineState &state, Exchange &exchange, const QJsonObject &body);

} // namespace demo
