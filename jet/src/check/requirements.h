// What the rows of a table show about a new table that is to take them.
#pragma once

#include <cstddef>
#include <set>
#include <vector>

#include "check/row_check.h"
#include "check/table_layout.h"
#include "index/index_tree.h"

namespace jet {

class Requirements {
public:
    explicit Requirements(const TableLayout& table);

    void AddRow(const CheckedRow& row, Version version);

    // Several rows have the same values, none of them null, in an index that is said to be unique.
    [[nodiscard]] bool IsRepeated(std::size_t index) const { return repeated_[index]; }
    [[nodiscard]] bool HasNull(std::size_t index) const { return null_[index]; }
    [[nodiscard]] bool ColumnHasNull(std::size_t column) const { return nullColumns_[column]; }

private:
    void AddKey(std::size_t i, const CheckedRow& row, Version version);

    const TableLayout& table_;
    std::vector<std::set<Key, KeyOrder>> keys_;  // by real index
    std::vector<bool> repeated_;
    std::vector<bool> null_;
    std::vector<bool> nullColumns_;
};

}  // namespace jet
