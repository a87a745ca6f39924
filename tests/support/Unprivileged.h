// Acts as a user who owns nothing, where the test runs as the superuser, whom permissions do not stop.
#pragma once

#include <unistd.h>

class Unprivileged
{
    static constexpr uid_t nobody = 65534;

public:
    Unprivileged() : m_is(geteuid() != 0 || seteuid(nobody) == 0) {}
    ~Unprivileged()
    {
        if (getuid() == 0) [[maybe_unused]]
            const int back = seteuid(0);
    }
    bool is() const { return m_is; }

private:
    const bool m_is;
};
