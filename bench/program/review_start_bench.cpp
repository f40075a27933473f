// How long from the start of TARN Review to its first painted frame, without and with a file? The
// pages, their charts and the file come behind it.
#include "bench/program/Questions.h"

namespace program_bench {
namespace {

constexpr int kRepetitions = 41;

Figures Start(std::vector<std::string> words) {
    return {{"ms", Process(std::move(words)).MillisecondsToFirstFrame()}};
}

[[maybe_unused]] const int kRegistered[] = {
    Measure("review_start/bare", kRepetitions, [] { return Start({BareWindow()}); }),
    Measure("review_start/program", kRepetitions, [] { return Start({ReviewProgram()}); }),
    Measure("review_start/program_with_file", kRepetitions,
            [] {
                return Start({ReviewProgram(), SampleFile()});
            }),
    Expect({{"review_start/program/ms", "review_start/bare/ms", 1.6},
            {"review_start/program_with_file/ms", "review_start/bare/ms", 1.6}})};

}  // namespace
}  // namespace program_bench
