// What belongs to a start; what it has to wait for is done in threads of their own while it goes
// on.
#pragma once

#include <thread>

namespace platform {

// Does `work` in a thread, which has come to its end when this object goes.
class Beside {
public:
    explicit Beside(void (*work)());
    ~Beside() { Wait(); }
    Beside(const Beside&) = delete;
    Beside& operator=(const Beside&) = delete;
    void Wait();

private:
    std::thread thread_;
};

// Reads the system's list of fonts, which takes as long as connecting to the display. A program
// with text needs both before its first frame; the list must be there before the first text is
// measured, or that would read it once more. Touches nothing of the toolkit, so that it may run
// before there is an application object.
void ReadFonts();

// Lets the colors of the desktop reach the programs where Qt has to be asked for it: the dark ones
// of Windows. Belongs before the application object.
void FollowSystemColors();

// Connects to the session's message bus. The first accessible name of a control waits for it, for
// some milliseconds where no bus is running. Needs the application object.
void ConnectToSessionBus();

}  // namespace platform
