// A request that did not get its answer, or not the whole of it: how the transfer failed.
#pragma once

#include "platform/error/Error.h"

class TransportError final : public Error
{
public:
    enum class Code
    {
        notConnectedToInternet,
        connectionLost, // closed, reset, or a body that was cut; not on this machine
        cannotFindHost,
        timedOut,
        cannotConnect, // refused; on this machine also what is a lost connection elsewhere
        cancelled,
        other // the description is the platform's own text
    };

    // With a description of our own; not for `other`.
    explicit TransportError(Code code);
    TransportError(Code code, const QString &description) : Error(description), m_code(code) {}

    Code code() const { return m_code; }

private:
    Code m_code;
};
