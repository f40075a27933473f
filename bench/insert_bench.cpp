// How long does it take to add rows in key order, each one whole by itself?
#include "bench/Fixture.h"

namespace bench {

namespace {

void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto all = RowsInKeyOrder(rows);
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(folder.File());
        const auto open = MakePeer(peer);
        open->Create(folder.File());
        state.ResumeTiming();
        open->Insert(all);
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(rows * state.iterations()));
}

const int kRegistered = Register("insert", &Run, true);

}  // namespace

}  // namespace bench
