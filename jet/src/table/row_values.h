// The new values of a row.
#pragma once

#include <functional>
#include <vector>

#include "jet/value.h"

namespace jet {

// By the columns' positions in the definition; only those marked as given count.
struct RowValues {
    std::vector<Value> values;
    std::vector<bool> given;
};

// Gives the value of a column, by its position in the definition.
using ColumnValue = std::function<Value(std::size_t column)>;

}  // namespace jet
