// Which rows a query has to look at.
#pragma once

#include <optional>
#include <vector>

#include "jet/query.h"
#include "page/types.h"
#include "table/table.h"

namespace jet {

// The rows among which all that satisfy the query are, in stored order, found through an index;
// nothing where no index helps and every row has to be looked at. Rows that do not satisfy it may
// be among them, so the conditions are still to be tested.
std::optional<std::vector<RowId>> RowsByIndex(const Table& table, const Query& query);

}  // namespace jet
