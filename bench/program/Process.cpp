#include "bench/program/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "bench/program/Display.h"

namespace program_bench {
namespace {

constexpr double kPatience = 60;  // seconds
constexpr double kGlance = 50e-6;
constexpr double kRest = 0.02;
constexpr int kQuietLooks = 10;

double Now() {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

void Wait(double seconds) {
    timespec time = {};
    time.tv_nsec = static_cast<long>(seconds * 1e9);
    nanosleep(&time, nullptr);
}

// This process's environment, with the display and `more` in it.
std::vector<std::string> Environment(std::map<std::string, std::string> more) {
    more["DISPLAY"] = TheDisplay().Name();
    more.try_emplace("QT_QPA_PLATFORM", "xcb");
    // What a desktop would add costs both programs the same and hides the difference.
    more.try_emplace("QT_QPA_PLATFORMTHEME", "none");
    std::vector<std::string> all;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (!more.contains(text.substr(0, text.find('=')))) all.push_back(text);
    }
    for (const auto& [name, value] : more) {
        all.push_back(std::string(name).append("=").append(value));
    }
    return all;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

Process::Process(std::vector<std::string> words, const std::map<std::string, std::string>& more) {
    Display& display = TheDisplay();
    while (display.IsPainted()) Wait(kGlance);  // the last one's window goes
    std::vector<std::string> environment = Environment(more);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    started_ = Now();
    const int failure = posix_spawn(&id_, words.front().c_str(), &quiet, nullptr,
                                    Pointers(words).data(), Pointers(environment).data());
    posix_spawn_file_actions_destroy(&quiet);
    if (failure != 0) throw std::runtime_error(words.front() + " does not start");
}

Process::~Process() {
    if (id_ == 0) return;
    kill(id_, SIGTERM);
    waitpid(id_, nullptr, 0);
}

double Process::MillisecondsToFirstFrame() {
    while (!TheDisplay().IsPainted()) {
        RequireRunning();
        Wait(kGlance);
    }
    return (Now() - started_) * 1e3;
}

Memory Process::MemoryAtRest() {
    double last = -1;
    for (int quiet = 0; quiet < kQuietLooks;) {
        RequireRunning();
        Wait(kRest);
        const double now = Figure("status", "VmRSS:");
        quiet = now == last ? quiet + 1 : 0;
        last = now;
    }
    return {.pssInKb = Figure("smaps_rollup", "Pss:"),
            .ownInKb =
                Figure("smaps_rollup", "Private_Clean:") + Figure("smaps_rollup", "Private_Dirty:"),
            .residentInKb = Figure("status", "VmRSS:"),
            .peakInKb = Figure("status", "VmHWM:")};
}

void Process::WaitForEnd() {
    int status = 0;
    while (waitpid(id_, &status, WNOHANG) == 0) {
        if (Now() - started_ > kPatience) throw std::runtime_error("the program does not end");
        Wait(kRest);
    }
    id_ = 0;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("the program ended with an error");
    }
}

double Process::Figure(const char* file, const std::string& name) const {
    std::ifstream lines("/proc/" + std::to_string(id_) + "/" + file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        double figure = 0;
        if (words >> word >> figure && word == name) return figure;
    }
    throw std::runtime_error("the system does not tell " + name);
}

void Process::RequireRunning() {
    if (waitpid(id_, nullptr, WNOHANG) != 0) {
        id_ = 0;
        throw std::runtime_error("the program ended too early");
    }
    if (Now() - started_ > kPatience) throw std::runtime_error("the program shows nothing");
}

}  // namespace program_bench
