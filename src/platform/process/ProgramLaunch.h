// Starts programs as processes of their own.
#pragma once

#include <sys/types.h>

class ProgramImage;

struct LaunchedProgram
{
    // The child of this process that stands for the program: it ends after the program, with the program's
    // exit status or the number of the signal that ended it. SIGTERM sent to it reaches the program. On Linux
    // a keeper (linux/Keeper.h), elsewhere the program itself.
    pid_t child = 0;
    // The program itself, which leads a process group of its own.
    pid_t program = 0;
};

// Returns once the program runs, its output and errors on the descriptor `output`; throws a SystemError that
// says why the system refused. To be called with all signals blocked (SignalsBlocked), so that no handler of
// ours runs in the child. On Linux the program and all that it started are ended when the calling thread
// dies.
LaunchedProgram launchProgram(const ProgramImage &image, int output);

// Waits for the end of a child: its exit status, or the number of the signal that ended it.
int exitStatusOf(pid_t child);

// What follows runs in the child, where only async-signal-safe calls are allowed. The parent learns of the
// program from what is written here, and of its start by the descriptor being closed.
struct LaunchReport
{
    pid_t program = 0; // 0 where `error` says why there is none
    int error = 0;

    void writeTo(int descriptor) const;
};
