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

// The peer with an open file of that many rows, in key order.
template <typename T>
std::unique_ptr<Peer> Filled(const std::string& name, const Folder& folder, std::size_t rows) {
    std::filesystem::remove(folder.File());
    auto peer = MakePeer(name);
    peer->Create(folder.File());
    InBatches<T>(InOrder(rows), [&](const std::vector<T>& batch) { peer->Insert(batch); });
    peer->Close();
    peer->Open(folder.File());
    return peer;
}

// Times `work` on a freshly filled file, over and over; it gets the peer and some rows picked at
// random, and changes or reads each of them.
template <typename T, typename Work>
void RunProbes(benchmark::State& state, const std::string& name, std::size_t rows, Work work) {
    const Folder folder;
    const auto open = Filled<T>(name, folder, rows);
    const auto probes = Sample<T>(rows, 20000);
    for (auto _ : state) work(*open, probes);
    state.SetItemsProcessed(static_cast<std::int64_t>(probes.size() * state.iterations()));
}

// Times inserting the rows of these numbers, in this order, into an empty file.
template <typename T>
void RunInserts(benchmark::State& state, const std::string& name,
                const std::vector<std::size_t>& numbers) {
    const Folder folder;
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(folder.File());
        const auto open = MakePeer(name);
        open->Create(folder.File());
        InBatches<T>(numbers, [&](const std::vector<T>& batch) {
            state.ResumeTiming();
            open->Insert(batch);
            state.PauseTiming();
        });
        open->Close();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(numbers.size() * state.iterations()));
}

// Registers `task` for each peer and for 1,000, 100,000 and 1,000,000 rows (the largest size only
// where TARN_BENCH_LARGE is set): "scan/jet4/100000".
using Task = void (*)(benchmark::State& state, const std::string& peer, std::size_t rows);
int Register(const char* question, Task task, bool writers);

}  // namespace bench
