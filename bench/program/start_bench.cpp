// How long from the start of the process to the first painted frame?
#include "bench/program/Questions.h"

namespace program_bench {
namespace {

constexpr int kRepetitions = 41;

Figures Start(const std::string& program) {
    return {{"ms", Process({program}).MillisecondsToFirstFrame()}};
}

[[maybe_unused]] const int kRegistered[] = {
    Measure("start/bare", kRepetitions, [] { return Start(BareWindow()); }),
    Measure("start/program", kRepetitions, [] { return Start(OurProgram()); }),
    Expect({{"start/program/ms", "start/bare/ms", 1.3}})};

}  // namespace
}  // namespace program_bench
