// All questions about the program in one run, its measurements taken in turn.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/program/Display.h"
#include "bench/program/Questions.h"

int main(int argc, char* argv[]) {
    std::vector<char*> words(argv, argv + argc);
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    words.insert(words.begin() + 1, interleaved);
    int count = static_cast<int>(words.size());
    benchmark::Initialize(&count, words.data());
    if (benchmark::ReportUnrecognizedArguments(count, words.data())) return 1;
    program_bench::TheDisplay();
    program_bench::Answers answers;
    benchmark::RunSpecifiedBenchmarks(&answers);
    return 0;
}
