#pragma once

// POST /api/pull: pretends to download a model, layer after layer, at a settable pace.

#include "EngineState.h"
#include "Exchange.h"

#include <QJsonObject>

#include <memory>

namespace demo {

void pull(EngineState &state, const std::shared_ptr<Exchange> &exchange, const QJsonObject &body);

} // namespace demo
