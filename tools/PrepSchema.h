// The tables of a data file, as the template has them.
#pragma once

#include <vector>

#include "jet/schema.h"

namespace tools {

std::vector<jet::TableSchema> PrepTables();

}  // namespace tools
