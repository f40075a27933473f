#include "bench/Fixture.h"

#include <cstdlib>

namespace bench {

int Register(const char* question, Task task, bool writers) {
    std::vector<std::size_t> sizes{1000, 100000};
    if (std::getenv("TARN_BENCH_LARGE") != nullptr) sizes.push_back(1000000);
    for (const std::size_t rows : sizes) {
        for (const char* peer : {"jet4", "jet3", "sqlite", "mdb"}) {
            const std::string name = peer;
            if (writers && name == "mdb") continue;
            benchmark::RegisterBenchmark(
                (std::string(question) + "/" + name + "/" + std::to_string(rows)).c_str(),
                [task, name, rows](benchmark::State& state) { task(state, name, rows); })
                ->UseRealTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
    return 0;
}

}  // namespace bench
