#include "tools/fcdtool/output.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>

#include "tools/fcdtool/terminal.h"

namespace fcdtool {

namespace {

constexpr double kNoticeable = 0.5;
constexpr double kBetweenShows = 0.1;
// Back to the line's begin, and the line empty.
constexpr const char* kEmptyLine = "\r\033[K";

[[noreturn]] void ThrowCannotWrite() {
    throw std::runtime_error("The result cannot be written.");
}

double Now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

void Say(std::string_view line) {
    if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size() ||
        std::fputc('\n', stdout) == EOF) {
        ThrowCannotWrite();
    }
}

void Report(std::string_view line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
}

void FinishOutput() {
    if (std::fflush(stdout) != 0) {
        ThrowCannotWrite();
    }
}

Progress::Progress(std::size_t total, std::string_view what)
    : total_(total), what_(what), begun_(Now()), isVisible_(total > 1 && ErrorsGoToTerminal()) {}

Progress::~Progress() {
    Hide();
}

void Progress::Hide() {
    if (shown_ > 0) {
        std::fputs(kEmptyLine, stderr);
    }
}

double Progress::Seconds() const {
    return Now() - begun_;
}

void Progress::Step(std::size_t rows) {
    ++done_;
    rows_ += rows;
    const double seconds = Seconds();
    if (isVisible_ && seconds > kNoticeable && seconds - shown_ > kBetweenShows) {
        shown_ = seconds;
        Show();
    }
}

void Progress::Show() {
    const double seconds = Seconds();
    const double left = seconds / static_cast<double>(done_) * static_cast<double>(total_ - done_);
    std::fprintf(stderr, "%s%zu of %zu %s, %.0f rows a second, %.0f s left", kEmptyLine, done_,
                 total_, what_.c_str(), static_cast<double>(rows_) / seconds, left);
    std::fflush(stderr);
}

}  // namespace fcdtool
