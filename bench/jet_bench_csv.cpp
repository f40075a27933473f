// Prints our side's figures as CSV: task, peer, rows, seconds, rows_per_second, peak_rss_kb.
//
//   jet_bench_csv [ROWS ...]      default: 1000 100000
//
// Each task runs in a process of its own, so that the peak of memory is the task's.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>

#include "bench/Peer.h"
#include "bench/Rows.h"

namespace {

using bench::Peer;
using bench::Row;
using Path = std::filesystem::path;

struct Task {
    const char* name;
    // Gives the number of rows that the timed part handled.
    std::function<std::size_t(Peer&, const Path&, std::size_t, double&)> run;
};

template <typename Work>
double Seconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The file of `rows` rows, made anew.
void Fill(Peer& peer, const Path& path, std::size_t rows) {
    peer.Create(path);
    peer.Insert(bench::RowsInKeyOrder(rows));
    peer.Close();
    peer.Open(path);
}

constexpr std::size_t kMostProbes = 100000;

std::size_t InsertAll(Peer& peer, const Path& path, const std::vector<Row>& rows, double& seconds) {
    peer.Create(path);
    seconds = Seconds([&] { peer.Insert(rows); });
    return rows.size();
}

// Some rows of a filled file, picked at random.
std::size_t Probe(Peer& peer, const Path& path, std::size_t rows, double& seconds,
                  const std::function<void(const std::vector<Row>&)>& work) {
    Fill(peer, path, rows);
    const auto probes = bench::Sample(bench::RowsInKeyOrder(rows), kMostProbes);
    seconds = Seconds([&] { work(probes); });
    return probes.size();
}

std::size_t Scan(Peer& peer, const Path& path, std::size_t rows, double& seconds) {
    Fill(peer, path, rows);
    seconds = Seconds([&] { peer.Scan(bench::Shape::kNumbers); });
    return rows;
}

std::size_t OpenFirstRow(Peer& peer, const Path& path, std::size_t rows, double& seconds) {
    Fill(peer, path, rows);
    peer.Close();
    seconds = Seconds([&] {
        peer.Open(path);
        peer.FirstRow();
    });
    return 1;
}

std::size_t InsertTexts(Peer& peer, const Path& path, std::size_t rows, double& seconds) {
    const auto notes = bench::Notes(rows);
    peer.Create(path);
    seconds = Seconds([&] { peer.Insert(notes); });
    return rows;
}

std::size_t ScanTexts(Peer& peer, const Path& path, std::size_t rows, double& seconds) {
    peer.Create(path);
    peer.Insert(bench::Notes(rows));
    peer.Close();
    peer.Open(path);
    seconds = Seconds([&] { peer.Scan(bench::Shape::kTexts); });
    return rows;
}

std::vector<Task> Tasks() {
    return {
        {"insert_ordered",
         [](Peer& peer, const Path& path, std::size_t rows, double& seconds) {
             return InsertAll(peer, path, bench::RowsInKeyOrder(rows), seconds);
         }},
        {"insert_random",
         [](Peer& peer, const Path& path, std::size_t rows, double& seconds) {
             return InsertAll(peer, path, bench::Shuffled(bench::RowsInKeyOrder(rows)), seconds);
         }},
        {"scan", Scan},
        {"seek_random",
         [](Peer& peer, const Path& path, std::size_t rows, double& seconds) {
             return Probe(peer, path, rows, seconds,
                          [&](const std::vector<Row>& probes) { peer.Seek(probes); });
         }},
        {"update_one_field",
         [](Peer& peer, const Path& path, std::size_t rows, double& seconds) {
             return Probe(peer, path, rows, seconds,
                          [&](const std::vector<Row>& probes) { peer.UpdateOneField(probes); });
         }},
        {"delete",
         [](Peer& peer, const Path& path, std::size_t rows, double& seconds) {
             return Probe(peer, path, rows, seconds,
                          [&](const std::vector<Row>& probes) { peer.Delete(probes); });
         }},
        {"open_first_row", OpenFirstRow},
        {"insert_texts", InsertTexts},
        {"scan_texts", ScanTexts},
    };
}

int RunTask(const Task& task, const char* peerName, std::size_t rows) {
    char folder[] = "/tmp/jet_bench_XXXXXX";
    if (mkdtemp(folder) == nullptr) return 1;
    int result = 0;
    try {
        const auto peer = bench::MakePeer(peerName);
        double seconds = 0;
        const std::size_t handled =
            task.run(*peer, std::filesystem::path(folder) / "bench file.mdb", rows, seconds);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        std::printf("%s,%s,%zu,%.6f,%.0f,%ld\n", task.name, peerName, rows, seconds,
                    static_cast<double>(handled) / seconds, usage.ru_maxrss);
        peer->Close();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s, %s: %s\n", task.name, peerName, error.what());
        result = 1;
    }
    std::filesystem::remove_all(folder);
    return result;
}

int InOwnProcess(const std::function<int()>& work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const int result = work();
        std::fflush(stdout);
        _exit(result);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

}  // namespace

int main(int argc, char* argv[]) {
    std::vector<std::size_t> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::strtoull(argv[i], nullptr, 10));
    if (sizes.empty()) sizes = {1000, 100000};
    std::printf("task,peer,rows,seconds,rows_per_second,peak_rss_kb\n");
    int failures = 0;
    for (const char* peer : {"jet4", "jet3"}) {
        for (const std::size_t rows : sizes) {
            for (const Task& task : Tasks()) {
                failures += InOwnProcess([&] { return RunTask(task, peer, rows); });
            }
        }
    }
    return failures == 0 ? 0 : 1;
}
