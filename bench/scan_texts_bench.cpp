// How long does it take to read every text and memo?
#include "bench/Fixture.h"

namespace bench {

namespace {

void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto open = FilledWithNotes(peer, folder, rows);
    for (auto _ : state) benchmark::DoNotOptimize(open->Scan(Shape::kTexts));
    state.SetItemsProcessed(static_cast<std::int64_t>(rows * state.iterations()));
}

const int kRegistered = Register("scan_texts", &Run, false);

}  // namespace

}  // namespace bench
