// The children of a process, as /proc lists them.
#pragma once

#include <sys/types.h>

// Only async-signal-safe calls are made but those of `visit`.
void forEachChildOf(pid_t parent, void (*visit)(pid_t child));
