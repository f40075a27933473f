// The values that take the place of a query's question marks.
#pragma once

#include <span>

#include "jet/query.h"

namespace jet {

// The query with its parameters as literals. kSyntax for another number of values than it has
// places.
Query Bind(const Query& query, std::span<const Value> parameters);

}  // namespace jet
