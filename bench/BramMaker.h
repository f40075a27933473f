// Makes assessment files of any size, to be imported.
#pragma once

#include <cstddef>
#include <filesystem>

#include "jet/schema.h"

namespace bench {

inline constexpr int kLocations = 3;   // of each zone
inline constexpr int kCostRows = 6;    // of each zone
inline constexpr int kResources = 14;  // rows of values for each location

// Zones with three locations and six costs each; ten zones share a table of values.
void MakeBramFile(const std::filesystem::path& file, jet::Version version, std::size_t zones);

}  // namespace bench
