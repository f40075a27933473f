#include "bench/Fixture.h"

#include <cstdlib>
#include <sstream>

namespace bench {

namespace {

std::vector<std::size_t> Sizes() {
    const char* wanted = std::getenv("TARN_BENCH_ROWS");
    std::istringstream words(wanted != nullptr ? wanted : "1000 100000 1000000");
    std::vector<std::size_t> sizes;
    for (std::size_t rows = 0; words >> rows;) sizes.push_back(rows);
    return sizes;
}

}  // namespace

int Register(const char* question, Task task, bool writers) {
    for (const std::size_t rows : Sizes()) {
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
