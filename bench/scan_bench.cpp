// How long does it take to read every field of every row?
#include "bench/Fixture.h"

namespace bench {

namespace {

void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto open = Filled(peer, folder, rows);
    for (auto _ : state) benchmark::DoNotOptimize(open->Scan(Shape::kNumbers));
    state.SetItemsProcessed(static_cast<std::int64_t>(rows * state.iterations()));
}

const int kRegistered = Register("scan", &Run, false);

}  // namespace

}  // namespace bench
