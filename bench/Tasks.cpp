#include "bench/Tasks.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "bench/Folder.h"
#include "bench/Rows.h"

namespace bench {

namespace {

using Path = std::filesystem::path;

constexpr std::size_t kMostProbes = 100000;

template <typename T, Bounds bounds>
void InsertAll(Peer& peer, const std::vector<std::size_t>& numbers, double& seconds) {
    const bool whole = bounds == Bounds::kWhole;
    if (whole) Timed(seconds, [&] { peer.Begin(); });
    InBatches<T>(numbers,
                 [&](const std::vector<T>& batch) { Timed(seconds, [&] { peer.Insert(batch); }); });
    if (whole) Timed(seconds, [&] { peer.Commit(); });
}

template <typename T, Bounds bounds = Bounds::kEach>
std::size_t InsertOrdered(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    InsertAll<T, bounds>(peer, InOrder(rows), seconds);
    return rows;
}

template <typename T, Bounds bounds = Bounds::kEach>
std::size_t InsertRandom(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    InsertAll<T, bounds>(peer, Shuffled(rows), seconds);
    return rows;
}

template <typename T>
std::size_t Scan(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    Timed(seconds, [&] { peer.Scan(kShapeOf<T>); });
    return rows;
}

template <typename T>
std::size_t Seek(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    const auto probes = Sample<T>(rows, kMostProbes);
    Timed(seconds, [&] { peer.Seek(probes); });
    return probes.size();
}

// Lets `change` loose on rows picked at random.
template <typename T, Bounds bounds, typename Change>
std::size_t ChangeProbes(Peer& peer, std::size_t rows, double& seconds, const Change& change) {
    const auto probes = Sample<T>(rows, kMostProbes);
    Timed(seconds, [&] { Within(bounds, peer, [&] { change(probes); }); });
    return probes.size();
}

template <typename T, Bounds bounds = Bounds::kEach>
std::size_t Update(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    return ChangeProbes<T, bounds>(
        peer, rows, seconds, [&](const std::vector<T>& probes) { peer.UpdateOneField(probes, 0); });
}

template <Bounds bounds = Bounds::kEach>
std::size_t UpdateMemos(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    return ChangeProbes<Note, bounds>(
        peer, rows, seconds, [&](const std::vector<Note>& probes) { peer.UpdateMemo(probes, 0); });
}

template <typename T, Bounds bounds = Bounds::kEach>
std::size_t Delete(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    return ChangeProbes<T, bounds>(peer, rows, seconds,
                                   [&](const std::vector<T>& probes) { peer.Delete(probes); });
}

std::size_t DeleteSelected(Peer& peer, const Path& /*file*/, std::size_t rows, double& seconds) {
    Timed(seconds, [&] { Within(Bounds::kWhole, peer, [&] { peer.DeleteSelected(); }); });
    return rows;
}

std::size_t OpenFirstRow(Peer& peer, const Path& file, std::size_t /*rows*/, double& seconds) {
    Timed(seconds, [&] {
        peer.Open(file);
        peer.FirstRow();
    });
    return 1;
}

template <typename T>
void Fill(Peer& peer, std::size_t rows) {
    peer.Begin();
    InBatches<T>(InOrder(rows), [&](const std::vector<T>& batch) { peer.Insert(batch); });
    peer.Commit();
}

int Run(const Task& task, const std::string& peerName, const Path& file, std::size_t rows) {
    const auto peer = MakePeer(peerName);
    if (!task.opens) peer->Open(file);
    double seconds = 0;
    const std::size_t handled = task.run(*peer, file, rows, seconds);
    std::printf("%s,%s,%zu,%.6f,%.0f,%ld\n", task.name, peerName.c_str(), rows, seconds,
                static_cast<double>(handled) / seconds, PeakMemory());
    peer->Close();
    return 0;
}

}  // namespace

__attribute__((noinline)) void Timed(double& seconds, const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

const std::vector<Task>& Tasks() {
    constexpr Shape kNumbers = Shape::kNumbers;
    constexpr Shape kTexts = Shape::kTexts;
    constexpr Bounds kWhole = Bounds::kWhole;
    static const std::vector<Task> kTasks = {
        {"insert_ordered", kNumbers, false, true, false, InsertOrdered<Row>},
        {"insert_random", kNumbers, false, true, false, InsertRandom<Row>},
        {"scan", kNumbers, true, false, false, Scan<Row>},
        {"seek_random", kNumbers, true, true, false, Seek<Row>},
        {"update_one_field", kNumbers, true, true, false, Update<Row>},
        {"delete", kNumbers, true, true, false, Delete<Row>},
        {"open_first_row", kNumbers, true, false, true, OpenFirstRow},
        {"insert_texts", kTexts, false, true, false, InsertOrdered<Note>},
        {"insert_random_texts", kTexts, false, true, false, InsertRandom<Note>},
        {"scan_texts", kTexts, true, false, false, Scan<Note>},
        {"seek_texts", kTexts, true, true, false, Seek<Note>},
        {"update_texts", kTexts, true, true, false, Update<Note>},
        {"update_memos", kTexts, true, true, false, UpdateMemos<>},
        {"delete_texts", kTexts, true, true, false, Delete<Note>},
        {"whole_insert_ordered", kNumbers, false, true, false, InsertOrdered<Row, kWhole>},
        {"whole_insert_random", kNumbers, false, true, false, InsertRandom<Row, kWhole>},
        {"whole_update_one_field", kNumbers, true, true, false, Update<Row, kWhole>},
        {"whole_delete", kNumbers, true, true, false, Delete<Row, kWhole>},
        {"whole_delete_selected", kNumbers, true, true, false, DeleteSelected},
        {"whole_insert_texts", kTexts, false, true, false, InsertOrdered<Note, kWhole>},
        {"whole_insert_random_texts", kTexts, false, true, false, InsertRandom<Note, kWhole>},
        {"whole_update_texts", kTexts, true, true, false, Update<Note, kWhole>},
        {"whole_update_memos", kTexts, true, true, false, UpdateMemos<kWhole>},
        {"whole_delete_texts", kTexts, true, true, false, Delete<Note, kWhole>},
    };
    return kTasks;
}

void Prepare(const Task& task, Peer& peer, const Path& file, std::size_t rows) {
    peer.Create(file);
    if (task.filled && task.shape == Shape::kNumbers) Fill<Row>(peer, rows);
    if (task.filled && task.shape == Shape::kTexts) Fill<Note>(peer, rows);
    peer.Close();
}

int PrintFigures(const Task& task, const std::string& peer, std::size_t rows) {
    const Folder folder;
    const int failed = InOwnProcess([&] {
        Prepare(task, *MakePeer(peer), folder.File(), rows);
        return 0;
    });
    return failed != 0 ? failed
                       : InOwnProcess([&] { return Run(task, peer, folder.File(), rows); });
}

int InOwnProcess(const std::function<int()>& work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        int result = 1;
        try {
            result = work();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s\n", error.what());
        }
        std::fflush(stdout);
        _exit(result);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

long PeakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

const Task& FindTask(const std::string& name) {
    const auto found = std::find_if(Tasks().begin(), Tasks().end(),
                                    [&name](const Task& task) { return task.name == name; });
    if (found == Tasks().end()) throw std::runtime_error("no task of this name");
    return *found;
}

void PrintHead() {
    std::printf("task,peer,rows,seconds,rows_per_second,peak_rss_kb\n");
}

}  // namespace bench
