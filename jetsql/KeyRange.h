// The part of an index that a query's conditions leave: from which key to which.
//
// SQLite's values become values of the columns' types, widened where a type cannot hold them
// exactly, so that the range holds every record that the conditions let through.
#pragma once

#include <optional>
#include <vector>

#include "jet/recordset.h"
#include "jet/schema.h"
#include "jetsql/Plan.h"
#include "jetsql/Sqlite.h"

namespace jetsql {

struct KeyRange {
    bool empty = false;             // no record can fulfill the conditions
    std::vector<jet::Value> lower;  // leading columns; empty: from the index's beginning
    std::vector<jet::Value> upper;  // records that begin with it still belong to the range
};

// `values` are SQLite's, in the order of the plan's conditions. A condition whose value has no
// counterpart in the column's type bounds nothing.
KeyRange MakeKeyRange(const jet::TableSchema& table, const Plan& plan, sqlite3_value** values);

// The value of a column's type that equals SQLite's; nothing when there is none to be sought.
// `isEmpty` is set when no record can equal it.
std::optional<jet::Value> EqualValue(jet::ColumnType type, sqlite3_value* value, bool& isEmpty);
// The nearest value of the type that is not above (`below`) or not below SQLite's.
std::optional<jet::Value> BoundValue(jet::ColumnType type, sqlite3_value* value, Bound bound,
                                     bool& isEmpty);

}  // namespace jetsql
