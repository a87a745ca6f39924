// Hands work to the main thread, from any thread.
#pragma once

#include <functional>

// Runs `function` in a later turn of the main thread's event loop, in the order of the calls. Any thread.
// The function must not throw. What is posted when the application object is gone is dropped.
void postToMain(std::function<void()> function);
