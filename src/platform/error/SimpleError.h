// An error that carries nothing but a complete sentence for the user.
#pragma once

#include "platform/error/Error.h"

class SimpleError final : public Error
{
public:
    explicit SimpleError(const QString &message) : Error(message) {}

    // The sentence, punctuation included; also the error's description.
    const QString &message() const { return description(); }
};
