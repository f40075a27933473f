// A roll-up in a SQLite file.
#pragma once

#include <memory>
#include <string>

#include "rollup/destination.h"

namespace rollup {

// While it is open the file is written through a write-ahead log, so that others may read.
std::unique_ptr<Destination> OpenSqlite(const std::string& file, const Waiting& waiting);

}  // namespace rollup
