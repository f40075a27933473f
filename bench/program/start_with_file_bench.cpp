// How long from the start of the process to the first painted frame, with a data file to open?
#include "bench/program/Questions.h"

namespace program_bench {
namespace {

constexpr int kRepetitions = 41;

Figures Start() {
    return {{"ms", Process({OurProgram(), SampleFile()}).MillisecondsToFirstFrame()}};
}

[[maybe_unused]] const int kRegistered[] = {
    Measure("start_with_file/program", kRepetitions, Start),
    Expect({{"start_with_file/program/ms", "start/bare/ms", 1.5}})};

}  // namespace
}  // namespace program_bench
