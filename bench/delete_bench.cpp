// How long does it take to delete rows: by key, each one whole by itself, and all that a query
// selects as one transaction?
#include "bench/Fixture.h"

namespace bench {

namespace {

template <typename T>
void Run(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunDeletions<T>(state, peer, rows, Bounds::kEach);
}

void Selected(benchmark::State& state, const std::string& peer, std::size_t rows) {
    RunOnCopies<Row>(state, peer, rows, rows, [](Peer& open) {
        Within(Bounds::kWhole, open, [&] { open.DeleteSelected(); });
    });
}

const int kNumbers = Register("delete", &Run<Row>, true);
const int kTexts = Register("delete_texts", &Run<Note>, true);
const int kSelected = Register("whole_delete_selected", &Selected, true);

}  // namespace

}  // namespace bench
