// The system's request to end the program: a desktop session or a computer that goes down.
#pragma once

#include <functional>

namespace platform {

// Calls `handler` from the event loop, message boxes' loops included, each time the system asks
// the program to end. A later call replaces the handler; an empty one goes back to ending at once.
void OnTermination(std::function<void()> handler);

}  // namespace platform
