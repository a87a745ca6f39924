#pragma once

// The endpoints below /demo/, through which tests steer the engine and look at what reached it. They never
// show faults and are not logged themselves.

#include "EngineState.h"

#include <httplib.h>

namespace demo {

void answerControl(EngineState &state, const httplib::Request &request, httplib::Response &response);

} // namespace demo
