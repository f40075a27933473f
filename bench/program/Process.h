// A program that is started on the display, watched and ended.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace program_bench {

struct Memory {
    double pssInKb = 0;  // its pages, those that it shares counted in part
    double ownInKb = 0;  // those that only it has
    double residentInKb = 0;
    double peakInKb = 0;  // the most that was resident
};

// Everything here throws std::runtime_error when the program does not do its part.
class Process {
public:
    // The program and its arguments; `more` goes into its environment.
    explicit Process(std::vector<std::string> words,
                     const std::map<std::string, std::string>& more = {});
    ~Process();  // asks it to end and waits
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // From its start to its first painted frame.
    double MillisecondsToFirstFrame();
    // Once it has come to rest.
    Memory MemoryAtRest();
    // Until it ends by itself.
    void WaitForEnd();

private:
    [[nodiscard]] double Figure(const char* file, const std::string& name) const;
    void RequireRunning();

    pid_t id_ = 0;
    double started_ = 0;
};

}  // namespace program_bench
