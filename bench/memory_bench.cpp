// How much memory does each peer take at most, for each task, and while it reads a file of 500 MB?
//
// A line of figures for each task, as jet_bench_csv prints them, and one for each large file.
#include <cstdio>

#include "bench/Folder.h"
#include "bench/Tasks.h"

namespace {

constexpr std::size_t kRows = 100000;

// How many rows of texts a file of 500 MB takes: Jet 4 keeps memos as UTF-16, the others a byte for
// each of these letters.
std::size_t RowsOfLargeFile(const std::string& peer) {
    return peer == "jet4" || peer == "mdb" ? 1300000 : 2600000;
}

int ReadLargeFile(const std::string& peer) {
    const bench::Folder folder;
    const bench::Task& scan = bench::FindTask("scan_texts");
    const std::size_t rows = RowsOfLargeFile(peer);
    const int failed = bench::InOwnProcess([&] {
        bench::Prepare(scan, *bench::MakePeer(peer), folder.File(), rows);
        return 0;
    });
    if (failed != 0) return failed;
    return bench::InOwnProcess([&] {
        const auto open = bench::MakePeer(peer);
        open->Open(folder.File());
        double seconds = 0;
        bench::Timed(seconds, [&] { open->Scan(bench::Shape::kTexts); });
        const auto bytes = std::filesystem::file_size(folder.File());
        std::printf("scan of a file of %.0f MB,%s,%zu,%.6f,%.0f,%ld\n",
                    static_cast<double>(bytes) / 1e6, peer.c_str(), rows, seconds,
                    static_cast<double>(rows) / seconds, bench::PeakMemory());
        open->Close();
        return 0;
    });
}

}  // namespace

int main() {
    int failures = 0;
    bench::PrintHead();
    for (const std::string& peer : bench::PeerNames()) {
        const bool onlyReads = !bench::MakePeer(peer)->CanWrite();
        for (const bench::Task& task : bench::Tasks()) {
            if (!onlyReads || !task.writes) failures += bench::PrintFigures(task, peer, kRows);
        }
        failures += ReadLargeFile(peer);
    }
    return failures == 0 ? 0 : 1;
}
