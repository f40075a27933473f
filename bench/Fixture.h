// What the benchmark programs share: a folder of their own, filled files, and the sizes to run at.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

#include "bench/Peer.h"
#include "bench/Rows.h"

namespace bench {

// A folder for one benchmark's file; removed at the end.
class Folder {
public:
    Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder();
    [[nodiscard]] std::filesystem::path File() const { return path_ / "bench file.mdb"; }

private:
    std::filesystem::path path_;
};

// The peer with an open file of that many rows, in key order.
std::unique_ptr<Peer> Filled(const std::string& peer, const Folder& folder, std::size_t rows);
std::unique_ptr<Peer> FilledWithNotes(const std::string& peer, const Folder& folder,
                                      std::size_t rows);

// Registers `task` for each peer and for 1,000, 100,000 and 1,000,000 rows (the largest size only
// where TARN_BENCH_LARGE is set): "scan/jet4/100000".
using Task = void (*)(benchmark::State& state, const std::string& peer, std::size_t rows);
int Register(const char* question, Task task, bool writers);

}  // namespace bench
