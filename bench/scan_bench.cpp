// How long does it take to read every field of every row?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto open = Filled<T>(peer, folder, rows);
    for (auto _ : state) benchmark::DoNotOptimize(open->Scan(kShapeOf<T>));
    state.SetItemsProcessed(static_cast<std::int64_t>(rows * state.iterations()));
}

const int kNumbers = Register("scan", &Run<Row>, false);
const int kTexts = Register("scan_texts", &Run<Note>, false);

}  // namespace

}  // namespace bench
