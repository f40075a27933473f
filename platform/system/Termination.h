// The end of the program that its user did not ask for: a desktop session or a computer that goes
// down, a display that is gone.
#pragma once

#include <functional>

namespace platform {

// Calls `handler` from the event loop, message boxes' loops included, each time the system asks
// the program to end. A later call replaces the handler; an empty one goes back to ending at once.
void OnTermination(std::function<void()> handler);

// While it lives, the process calls `handler` when something in it exits, as Qt does where its
// display's server is gone: no event is handled any more, and static objects are destroyed next.
// One at a time.
class ExitWatch {
public:
    explicit ExitWatch(std::function<void()> handler);
    ExitWatch(const ExitWatch&) = delete;
    ExitWatch& operator=(const ExitWatch&) = delete;
    ~ExitWatch();
};

}  // namespace platform
