// What the benchmark programs share: a folder of their own, filled files, and the sizes to run at.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

#include "bench/Folder.h"
#include "bench/Peer.h"
#include "bench/Rows.h"

namespace bench {

// Makes a file of that many rows, in key order, and closes it.
template <typename T>
void Fill(const std::string& name, const std::filesystem::path& file, std::size_t rows) {
    const auto peer = MakePeer(name);
    peer->Create(file);
    peer->Begin();
    InBatches<T>(InOrder(rows), [&](const std::vector<T>& batch) { peer->Insert(batch); });
    peer->Commit();
    peer->Close();
}

// The peer with such a file, open.
template <typename T>
std::unique_ptr<Peer> Filled(const std::string& name, const Folder& folder, std::size_t rows) {
    Fill<T>(name, folder.File(), rows);
    auto peer = MakePeer(name);
    peer->Open(folder.File());
    return peer;
}

// The rows, picked at random, that a task reads or changes.
inline constexpr std::size_t kMostProbes = 20000;

// Times `work` on a filled file, over and over; it gets the peer and the probes.
template <typename T, typename Work>
void RunProbes(benchmark::State& state, const std::string& name, std::size_t rows, Work work) {
    const Folder folder;
    const auto open = Filled<T>(name, folder, rows);
    const auto probes = Sample<T>(rows, kMostProbes);
    for (auto _ : state) work(*open, probes);
    state.SetItemsProcessed(static_cast<std::int64_t>(probes.size() * state.iterations()));
}

// Times `work`, which deletes so many rows, each time on a fresh copy of one filled file.
template <typename T, typename Work>
void RunOnCopies(benchmark::State& state, const std::string& name, std::size_t rows,
                 std::size_t deleted, Work work) {
    const Folder folder;
    const std::filesystem::path filled = folder.Path() / "filled.mdb";
    Fill<T>(name, filled, rows);
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::copy_file(filled, folder.File(),
                                   std::filesystem::copy_options::overwrite_existing);
        const auto open = MakePeer(name);
        open->Open(folder.File());
        state.ResumeTiming();
        work(*open);
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(deleted * state.iterations()));
}

// Times deleting the probes.
template <typename T>
void RunDeletions(benchmark::State& state, const std::string& name, std::size_t rows,
                  Bounds bounds) {
    const auto probes = Sample<T>(rows, kMostProbes);
    RunOnCopies<T>(state, name, rows, probes.size(),
                   [&](Peer& open) { Within(bounds, open, [&] { open.Delete(probes); }); });
}

// Times inserting the rows of these numbers, in this order, into an empty file.
template <typename T>
void RunInserts(benchmark::State& state, const std::string& name,
                const std::vector<std::size_t>& numbers, Bounds bounds) {
    const Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(folder.File());
        const auto open = MakePeer(name);
        open->Create(folder.File());
        state.ResumeTiming();
        Within(bounds, *open, [&] {
            state.PauseTiming();
            InBatches<T>(numbers, [&](const std::vector<T>& batch) {
                state.ResumeTiming();
                open->Insert(batch);
                state.PauseTiming();
            });
            state.ResumeTiming();
        });
        state.PauseTiming();
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(numbers.size() * state.iterations()));
}

// Registers `task` for each peer and for 1,000, 100,000 and 1,000,000 rows, or those that
// TARN_BENCH_ROWS names: "scan/jet4/100000".
using Task = void (*)(benchmark::State& state, const std::string& peer, std::size_t rows);
int Register(const char* question, Task task, bool writers);

}  // namespace bench
