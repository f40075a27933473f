// The live values of a roll-up in a database of PostgreSQL.
#pragma once

#include <memory>
#include <string>

#include "rollup/value_source.h"

namespace rollup {

// Throws DestinationError where there is no such server or database.
std::unique_ptr<ValueSource> OpenPostgresValues(const std::string& connection);

}  // namespace rollup
