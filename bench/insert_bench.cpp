// How long does it take to add rows, each one whole by itself, in key order and at random?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void InKeyOrder(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunInserts<T>(state, peer, InOrder(rows), Bounds::kEach);
}

template <typename T>
void AtRandom(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunInserts<T>(state, peer, Shuffled(rows), Bounds::kEach);
}

const int kOrdered = Register("insert", &InKeyOrder<Row>, true);
const int kRandom = Register("insert_random", &AtRandom<Row>, true);
const int kOrderedTexts = Register("insert_texts", &InKeyOrder<Note>, true);
const int kRandomTexts = Register("insert_random_texts", &AtRandom<Note>, true);

}  // namespace

}  // namespace bench
