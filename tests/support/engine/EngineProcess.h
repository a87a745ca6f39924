#pragma once

// The two things that the program can be asked for on its command line.

namespace demo {

// Serves until a signal ends it. Returns the exit status.
int serve();

// Prints the version of the server that answers, and the program's own where they differ.
int printVersion();

} // namespace demo
