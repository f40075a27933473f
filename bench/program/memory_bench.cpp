// How much memory does the program take once it has come to rest?
#include "bench/program/Questions.h"

namespace program_bench {
namespace {

constexpr int kRepetitions = 5;

Figures Take(std::vector<std::string> words) {
    Process program(std::move(words));
    program.MillisecondsToFirstFrame();
    const Memory memory = program.MemoryAtRest();
    return {{"pss_kb", memory.pssInKb},
            {"own_kb", memory.ownInKb},
            {"peak_kb", memory.peakInKb},
            {"resident_kb", memory.residentInKb}};
}

int ExpectOf(const std::string& program) {
    int registered = 0;
    for (const char* figure : {"pss_kb", "own_kb", "resident_kb", "peak_kb"}) {
        registered += Expect({{std::string("memory/").append(program).append("/").append(figure),
                               std::string("memory/bare/").append(figure), 1.5}});
    }
    return registered;
}

[[maybe_unused]] const int kRegistered[] = {
    Measure("memory/bare", kRepetitions, [] { return Take({BareWindow()}); }),
    Measure("memory/program", kRepetitions, [] { return Take({OurProgram()}); }),
    Measure("memory/program_with_file", kRepetitions,
            [] {
                return Take({OurProgram(), SampleFile()});
            }),
    ExpectOf("program"), ExpectOf("program_with_file")};

}  // namespace
}  // namespace program_bench
