// How long does it take to read every field of every row? Texts are read as UTF-8, and as UTF-16.
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

void RunWide(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto open = Filled<Note>(peer, folder, rows);
    for (auto _ : state) benchmark::DoNotOptimize(open->ScanWide());
    state.SetItemsProcessed(static_cast<std::int64_t>(rows * state.iterations()));
}

const int kNumbers = Register("scan", &Run<Row>, false);
const int kTexts = Register("scan_texts", &Run<Note>, false);
const int kWideTexts = Register("scan_texts_utf16", &RunWide, true);

}  // namespace

}  // namespace bench
