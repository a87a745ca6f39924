// The process between this program and one it starts. It sees to it that nothing of what the program started
// is left, whichever of the two dies, and however.
//
// The kernel sends a signal to the child of a process that died, but not to that child's children, and a
// process that has left its group, or ignores SIGTERM, escapes whoever ends groups. A keeper is the subreaper
// of everything below it: whatever loses its parent becomes its child, so it can end one generation after the
// other until there is none.
#pragma once

#include <csignal>

#include <sys/types.h>

class ProgramImage;

// Sent to a keeper, it kills the program with all that it started. SIGTERM is passed on to the program alone.
constexpr int keepersKillSignal = SIGQUIT;

// What a child that has just been forked from `owner`, with all signals blocked, does from then on: starts
// the program as ProgramImage::execute() says, tells of it by a LaunchReport on `report`, and lives until it
// has ended. Then, or once the thread that forked it dies, nothing is left of the program. A program whose
// owner died is asked to end first, and has the time for it. Only async-signal-safe calls are made.
[[noreturn]] void keepProgram(const ProgramImage &image, int output, int report, pid_t owner);
