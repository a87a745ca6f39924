#pragma once

// POST /api/chat: loads the model and speaks.

#include "EngineState.h"
#include "Exchange.h"

#include <QJsonObject>

#include <memory>

namespace demo {

// Blocks while the model loads; the answer itself is written by the exchange's stream.
void chat(EngineState &state, const std::shared_ptr<Exchange> &exchange, const QJsonObject &body);

} // namespace demo
