// What the operating system says about who reads the output.
#pragma once

namespace fcdtool {

bool ErrorsGoToTerminal();

// Whether people print on Letter where this runs; they print on A4 elsewhere.
bool UsesLetter();

// While one lives, a request to end the program (Ctrl+C, or another program's) only sets a flag; a
// second one ends it at once.
class EndRequests {
public:
    EndRequests();
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;
    ~EndRequests();
    [[nodiscard]] static bool Came();
};

}  // namespace fcdtool
