// A failure of the operating system: an errno value with a fixed text in English, the same on every system
// and in every locale.
#pragma once

#include "platform/error/Error.h"

class SystemError final : public Error
{
public:
    // `code` is an errno value.
    explicit SystemError(int code);

    int code() const { return m_code; }

    // What the description of such an error says, for example "No such file or directory". Never translated:
    // sentences are recognised by it. Any thread.
    static QString text(int code);

private:
    int m_code;
};
