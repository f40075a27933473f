// A roll-up in a database of PostgreSQL.
#pragma once

#include <memory>
#include <string>

#include "rollup/destination.h"

namespace rollup {

// Tables that are there are used as they are; missing ones are made, partitioned by year.
std::unique_ptr<Destination> OpenPostgres(const std::string& connection, const Waiting& waiting);

}  // namespace rollup
