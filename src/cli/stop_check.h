// What long work asks between two of its steps.
#pragma once

#include <functional>

// Throws Failure where the work is to end. Any thread.
using StopCheck = std::function<void()>;

// That of a command: ends at a signal to the process, with the signal's status.
void endAtSignal();
