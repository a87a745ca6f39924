// What a test program does when a test starts it anew as a child of its own, for what a shell cannot play.
#pragma once

#include <QCoreApplication>

#include <optional>

class ChildRoles
{
public:
    // Starts a child that holds the pipe behind this argument and goes on with the script behind that, and
    // lives on.
    static constexpr auto parent = "--parent";
    // Ends at once, leaving a process in a group of its own that holds the pipe behind this argument; prints
    // that process's id.
    static constexpr auto leaveSomeone = "--leave-someone";

    // The exit status of the role the program was started in; nothing when it is to run its tests.
    static std::optional<int> play(QCoreApplication &application);
};
