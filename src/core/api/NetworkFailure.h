// Whether an operation failed for want of the network between the engine and its library, so that the same
// one may succeed once that is there again.
#pragma once

#include <exception>

// An engine that is gone does not count: that is no matter of the network.
bool isNetworkFailure(const std::exception_ptr &error);
