// Thrown by an operation that gave up because its stop token asked it to.
#pragma once

#include "platform/error/Error.h"

class CancellationError final : public Error
{
public:
    CancellationError();
};
