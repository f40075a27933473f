// All questions in one program, so that every peer is measured in the same run.
#include <benchmark/benchmark.h>

#include "bench/Ratios.h"

int main(int argc, char* argv[]) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    bench::Ratios ratios;
    benchmark::RunSpecifiedBenchmarks(&ratios);
    return 0;
}
