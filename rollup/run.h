// A run of the roll-up: data files into a destination.
//
// Files are read by several threads and written by the one that calls, in the order of their paths,
// each in one transaction. What is in memory at a time is bounded by what the files being read
// take, however many there are.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "rollup/destination.h"

namespace rollup {

struct Options {
    unsigned jobs = 0;   // threads that read; 0 for one for each core
    bool prune = false;  // also removes what is known of files that are gone
};

// What a run says on its way; all are called by the thread that runs.
struct Events {
    std::function<void(std::size_t files)> begins;  // that many files will be looked at
    std::function<void(std::size_t rows)> fileDone;
    std::function<void(const std::string& path, const std::string& reason)> refused;
    std::function<bool()> isStopped;  // asked between files
};

struct Summary {
    std::size_t files = 0;
    std::size_t read = 0;
    std::size_t unchanged = 0;
    std::size_t duplicates = 0;
    std::size_t refused = 0;
    std::size_t pruned = 0;
    std::size_t rows = 0;
    std::size_t unsearchable = 0;  // folders, and paths where nothing is
    bool isStopped = false;        // before all files were looked at
};

// Throws DestinationError when the destination fails; the files before are in it.
Summary Run(const std::vector<std::filesystem::path>& where, Destination& destination,
            const Options& options, const Events& events);

}  // namespace rollup
