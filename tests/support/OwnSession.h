// A screen and a session bus of a test's own, which end with it.
#pragma once

#include <optional>

class OwnSession
{
public:
    // Runs the test program again inside such a session; the exit status of that. Nothing where this is so
    // already, and where the tools for it are missing.
    static std::optional<int> run(int argc, char **argv);
    static bool isEntered();
};
