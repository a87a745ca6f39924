// A screen and a session bus of a test's own, which end with it.
#pragma once

class OwnSession
{
public:
    // Runs the test program again inside such a session, in this process's place. Returns where that is so
    // already, and where the tools for it are missing.
    static void enter(int argc, char **argv);
    static bool isEntered();
};
