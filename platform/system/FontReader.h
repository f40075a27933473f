// Reads the system's list of fonts while the program does something else.
//
// Reading it takes as long as connecting to the display, and a program with text needs both before
// its first frame. Made before the application object, it reads in a thread of its own; it must be
// waited for before the first text is measured, or that would read the list once more.
#pragma once

#include <thread>

namespace platform {

class FontReader {
public:
    FontReader();
    ~FontReader() { Wait(); }
    FontReader(const FontReader&) = delete;
    FontReader& operator=(const FontReader&) = delete;
    void Wait();

private:
    std::thread thread_;
};

}  // namespace platform
