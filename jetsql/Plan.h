// Which index answers a query, and how much of it: the part of the virtual table that SQLite asks
// before it reads anything.
//
// A plan is made of SQLite's constraints on columns and of its ORDER BY. It names an index of the
// table, or none, and for each of the index's leading columns the conditions that bound the walk.
// SQLite tests every condition again on the rows that come, so a plan may let too many rows
// through but never too few.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jet/schema.h"

namespace jetsql {

enum class Bound { kEqual, kAbove, kBelow };  // kAbove: > and >=, kBelow: < and <=

struct Condition {
    int column = 0;  // position in the table
    Bound bound = Bound::kEqual;
    int argument = 0;  // which of the values that SQLite hands over with the query
};

struct Order {
    int column = 0;
    bool descending = false;
};

struct Plan {
    int index = -1;                     // position in the table's indexes; -1: stored order
    bool backwards = false;             // from the index's last record to its first
    bool ordered = false;               // the rows come in the order that was asked for
    std::vector<Condition> conditions;  // equalities on the leading columns, then up to two bounds
    double rows = 0;                    // estimate
    double cost = 0;

    // The plan as a text, which SQLite keeps between planning and running and EXPLAIN shows.
    [[nodiscard]] std::string Text(const jet::TableSchema& table) const;
    [[nodiscard]] static Plan FromText(const std::string& text);
};

// Whether an order or a range of this type is the same in an index and in SQLite. Texts are not:
// their order in an index is that of a language. Yes/no are kept apart because an index has yes
// before no; singles and doubles can be no numbers, which SQLite takes for nulls.
[[nodiscard]] bool HasSameRange(jet::ColumnType type);
[[nodiscard]] bool HasSameOrder(jet::ColumnType type);
[[nodiscard]] bool HasSameEquality(jet::ColumnType type);
// Whether equal values are one key of an index. Dates are compared as texts to the second, so that
// an equal one lies somewhere in a range.
[[nodiscard]] bool HasExactEquality(jet::ColumnType type);

// The best plan for these conditions and this order; `rows` is the number of records.
[[nodiscard]] Plan MakePlan(const jet::TableSchema& table, double rows,
                            const std::vector<Condition>& conditions,
                            const std::vector<Order>& order);

}  // namespace jetsql
