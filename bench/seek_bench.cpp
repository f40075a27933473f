// How long does it take to find a row by its full key and to read one field?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunProbes<T>(state, peer, rows, [](Peer& open, const std::vector<T>& probes) {
        benchmark::DoNotOptimize(open.Seek(probes));
    });
}

const int kNumbers = Register("seek", &Run<Row>, true);
const int kTexts = Register("seek_texts", &Run<Note>, true);

}  // namespace

}  // namespace bench
