// The tables of a data file in the current format, as every new file has them.
#pragma once

#include <vector>

#include "jet/schema.h"

namespace season {

inline constexpr const char* kCurrentFormat = "4.01.01";

// In the order in which the tables are made.
std::vector<jet::TableSchema> Tables();

}  // namespace season
