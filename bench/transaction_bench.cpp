// How long does it take to add, change and delete rows when all of them are one transaction?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void InKeyOrder(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunInserts<T>(state, peer, InOrder(rows), Bounds::kWhole);
}

template <typename T>
void AtRandom(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunInserts<T>(state, peer, Shuffled(rows), Bounds::kWhole);
}

template <typename T>
void Update(benchmark::State& state, const std::string& peer, std::size_t rows) {
    int round = 0;
    RunProbes<T>(state, peer, rows, [&round](Peer& open, const std::vector<T>& probes) {
        Within(Bounds::kWhole, open, [&] { open.UpdateOneField(probes, round++); });
    });
}

void UpdateMemos(benchmark::State& state, const std::string& peer, std::size_t rows) {
    int round = 0;
    RunProbes<Note>(state, peer, rows, [&round](Peer& open, const std::vector<Note>& probes) {
        Within(Bounds::kWhole, open, [&] { open.UpdateMemo(probes, round++); });
    });
}

template <typename T>
void Delete(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunDeletions<T>(state, peer, rows, Bounds::kWhole);
}

const int kOrdered = Register("whole_insert", &InKeyOrder<Row>, true);
const int kRandom = Register("whole_insert_random", &AtRandom<Row>, true);
const int kOrderedTexts = Register("whole_insert_texts", &InKeyOrder<Note>, true);
const int kRandomTexts = Register("whole_insert_random_texts", &AtRandom<Note>, true);
const int kUpdates = Register("whole_update", &Update<Row>, true);
const int kTextUpdates = Register("whole_update_texts", &Update<Note>, true);
const int kMemoUpdates = Register("whole_update_memos", &UpdateMemos, true);
const int kDeletions = Register("whole_delete", &Delete<Row>, true);
const int kTextDeletions = Register("whole_delete_texts", &Delete<Note>, true);

}  // namespace

}  // namespace bench
