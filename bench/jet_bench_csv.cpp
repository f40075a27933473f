// Prints figures as CSV: task, peer, rows, seconds, rows_per_second, peak_rss_kb.
//
//   jet_bench_csv [--task NAME] [--peer NAME] [ROWS ...]      default: all tasks, 1000 and 100000
//
// Each task runs in a process of its own, so that the peak of memory is the task's.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/Tasks.h"

int main(int argc, char* argv[]) {
    std::string onlyTask;
    std::string onlyPeer;
    std::vector<std::size_t> sizes;
    for (int i = 1; i < argc; ++i) {
        const bool hasMore = i + 1 < argc;
        if (std::strcmp(argv[i], "--task") == 0 && hasMore) {
            onlyTask = argv[++i];
        } else if (std::strcmp(argv[i], "--peer") == 0 && hasMore) {
            onlyPeer = argv[++i];
        } else if (const auto rows = std::strtoull(argv[i], nullptr, 10); rows > 0) {
            sizes.push_back(rows);
        } else {
            std::fprintf(stderr, "usage: jet_bench_csv [--task NAME] [--peer NAME] [ROWS ...]\n");
            return 2;
        }
    }
    if (sizes.empty()) sizes = {1000, 100000};
    bench::PrintHead();
    int failures = 0;
    for (const std::string& peer : bench::PeerNames()) {
        if (!onlyPeer.empty() && onlyPeer != peer) continue;
        const bool onlyReads = !bench::MakePeer(peer)->CanWrite();
        for (const std::size_t rows : sizes) {
            for (const bench::Task& task : bench::Tasks()) {
                if ((!onlyTask.empty() && onlyTask != task.name) || (onlyReads && task.writes)) {
                    continue;
                }
                failures += bench::PrintFigures(task, peer, rows);
            }
        }
    }
    return failures == 0 ? 0 : 1;
}
