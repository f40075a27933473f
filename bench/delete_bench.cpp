// How long does it take to delete rows by key, each one whole by itself?
#include "bench/Fixture.h"

namespace bench {

namespace {

void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto probes = Sample(RowsInKeyOrder(rows), 20000);
    for (auto _ : state) {
        state.PauseTiming();
        auto open = Filled(peer, folder, rows);
        state.ResumeTiming();
        open->Delete(probes);
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(probes.size() * state.iterations()));
}

const int kRegistered = Register("delete", &Run, true);

}  // namespace

}  // namespace bench
