#include "bench/Fixture.h"

#include <cstdlib>
#include <stdexcept>

namespace bench {

Folder::Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "tarn bench XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the benchmark");
    path_ = name;
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

namespace {

template <typename T>
std::unique_ptr<Peer> FilledWith(const std::string& name, const Folder& folder,
                                 const std::vector<T>& rows) {
    std::filesystem::remove(folder.File());
    auto peer = MakePeer(name);
    peer->Create(folder.File());
    peer->Insert(rows);
    peer->Close();
    peer->Open(folder.File());
    return peer;
}

}  // namespace

std::unique_ptr<Peer> Filled(const std::string& peer, const Folder& folder, std::size_t rows) {
    return FilledWith(peer, folder, RowsInKeyOrder(rows));
}

std::unique_ptr<Peer> FilledWithNotes(const std::string& peer, const Folder& folder,
                                      std::size_t rows) {
    return FilledWith(peer, folder, Notes(rows));
}

int Register(const char* question, Task task, bool writers) {
    std::vector<std::size_t> sizes{1000, 100000};
    if (std::getenv("TARN_BENCH_LARGE") != nullptr) sizes.push_back(1000000);
    for (const std::size_t rows : sizes) {
        for (const char* peer : {"jet4", "jet3", "sqlite", "mdb"}) {
            const std::string name = peer;
            if (writers && name == "mdb") continue;
            benchmark::RegisterBenchmark(
                (std::string(question) + "/" + name + "/" + std::to_string(rows)).c_str(),
                [task, name, rows](benchmark::State& state) { task(state, name, rows); })
                ->UseRealTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
    return 0;
}

}  // namespace bench
