// How long does it take to find a row by its key and to change one field, whole?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    int round = 0;
    RunProbes<T>(state, peer, rows, [&round](Peer& open, const std::vector<T>& probes) {
        open.UpdateOneField(probes, round++);
    });
}

void RunMemos(benchmark::State& state, const std::string& peer, std::size_t rows) {
    int round = 0;
    RunProbes<Note>(state, peer, rows, [&round](Peer& open, const std::vector<Note>& probes) {
        open.UpdateMemo(probes, round++);
    });
}

const int kNumbers = Register("update", &Run<Row>, true);
const int kTexts = Register("update_texts", &Run<Note>, true);
const int kMemos = Register("update_memos", &RunMemos, true);

}  // namespace

}  // namespace bench
