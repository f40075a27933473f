// How long does it take to find a row by its key and to change one field, whole?
#include "bench/Fixture.h"

namespace bench {

namespace {

void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto open = Filled(peer, folder, rows);
    const auto probes = Sample(RowsInKeyOrder(rows), 20000);
    for (auto _ : state) open->UpdateOneField(probes);
    state.SetItemsProcessed(static_cast<std::int64_t>(probes.size() * state.iterations()));
}

const int kRegistered = Register("update", &Run, true);

}  // namespace

}  // namespace bench
