// How long does it take to add, change and delete rows when all of them are one transaction?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Insert(benchmark::State& state, const std::string& name,
            const std::vector<std::size_t>& numbers) {
    const Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(folder.File());
        const auto open = MakePeer(name);
        open->Create(folder.File());
        state.ResumeTiming();
        open->Begin();
        state.PauseTiming();
        InBatches<T>(numbers, [&](const std::vector<T>& batch) {
            state.ResumeTiming();
            open->Insert(batch);
            state.PauseTiming();
        });
        state.ResumeTiming();
        open->Commit();
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(numbers.size() * state.iterations()));
}

template <typename T>
void InKeyOrder(benchmark::State& state, const std::string& peer, std::size_t rows) {
    Insert<T>(state, peer, InOrder(rows));
}

template <typename T>
void AtRandom(benchmark::State& state, const std::string& peer, std::size_t rows) {
    Insert<T>(state, peer, Shuffled(rows));
}

template <typename T>
void Update(benchmark::State& state, const std::string& peer, std::size_t rows) {
    int round = 0;
    RunProbes<T>(state, peer, rows, [&round](Peer& open, const std::vector<T>& probes) {
        open.Begin();
        open.UpdateOneField(probes, round++);
        open.Commit();
    });
}

template <typename T>
void Delete(benchmark::State& state, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const auto probes = Sample<T>(rows, 20000);
    for (auto _ : state) {
        state.PauseTiming();
        auto open = Filled<T>(peer, folder, rows);
        state.ResumeTiming();
        open->Begin();
        open->Delete(probes);
        open->Commit();
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(probes.size() * state.iterations()));
}

const int kOrdered = Register("whole_insert", &InKeyOrder<Row>, true);
const int kRandom = Register("whole_insert_random", &AtRandom<Row>, true);
const int kOrderedTexts = Register("whole_insert_texts", &InKeyOrder<Note>, true);
const int kUpdates = Register("whole_update", &Update<Row>, true);
const int kTextUpdates = Register("whole_update_texts", &Update<Note>, true);
const int kDeletions = Register("whole_delete", &Delete<Row>, true);
const int kTextDeletions = Register("whole_delete_texts", &Delete<Note>, true);

}  // namespace

}  // namespace bench
