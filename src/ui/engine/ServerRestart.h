// Stops the engine and starts it again, so that a changed setting takes effect.
#pragma once

class EngineManager;

// Returns at once; the old engine is given a moment to release its port. Does not change what the next launch
// of the program does.
void restartServer(EngineManager &engine);
