// Tells the failures that the program brought about itself, by stopping, from those the user is to read.
#pragma once

#include <exception>

// Whether `error` is a CancellationError or a transfer that was cancelled.
bool isCancellation(const std::exception_ptr &error);
