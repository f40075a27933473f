// How long does it take to delete rows by key, each one whole by itself?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunDeletions<T>(state, peer, rows, Bounds::kEach);
}

const int kNumbers = Register("delete", &Run<Row>, true);
const int kTexts = Register("delete_texts", &Run<Note>, true);

}  // namespace

}  // namespace bench
