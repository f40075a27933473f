// How long does it take to open a file and to read the first field of its first row?
#include "bench/Fixture.h"

namespace bench {

namespace {

void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto open = Filled<Row>(peer, folder, rows);
    open->Close();
    for (auto _ : state) {
        open->Open(folder.File());
        benchmark::DoNotOptimize(open->FirstRow());
        open->Close();
    }
    state.SetItemsProcessed(state.iterations());
}

const int kRegistered = Register("open", &Run, false);

}  // namespace

}  // namespace bench
