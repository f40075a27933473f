// A table as the engine reads it: its lines as the reference dumps have them, and its index keys
// made anew.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "catalog/catalog.h"

// How many keys equal those that are stored, of one type of column and direction.
struct KeyCount {
    std::uint64_t matched = 0;
    std::uint64_t total = 0;
    std::uint64_t variant = 0;      // of the matched, those made in another writer's way
    std::uint64_t unsupported = 0;  // not counted in the total
};

using KeyCounts = std::map<std::string, KeyCount>;

struct TableDump {
    std::vector<std::string> lines;
    KeyCounts keys;
    std::uint64_t rows = 0;
    std::uint64_t entries = 0;
    std::vector<std::string> faults;  // what the engine's own comparison found
};

TableDump DumpTable(jet::Table& table, bool system);
