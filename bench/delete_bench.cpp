// How long does it take to delete rows by key, each one whole by itself?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto probes = Sample<T>(rows, 20000);
    for (auto _ : state) {
        state.PauseTiming();
        auto open = Filled<T>(peer, folder, rows);
        state.ResumeTiming();
        open->Delete(probes);
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(probes.size() * state.iterations()));
}

const int kNumbers = Register("delete", &Run<Row>, true);
const int kTexts = Register("delete_texts", &Run<Note>, true);

}  // namespace

}  // namespace bench
