// The relationships of a table, as they are kept when its rows change: no row without the one that
// it refers to, and none taken away from under those that refer to it.
//
// A reference with a null in it refers to nothing. What a relationship cascades is handed back as
// changes to be made next, so that no chain of them is deeper than the stack.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "table/definition.h"
#include "table/row_keys.h"
#include "table/row_values.h"

namespace jet {

class Table;

// Where the other tables of the file are.
class TableFamily {
public:
    TableFamily() = default;
    TableFamily(const TableFamily&) = delete;
    TableFamily& operator=(const TableFamily&) = delete;
    virtual ~TableFamily() = default;
    // The table with this definition, or null.
    virtual Table* TableAt(PageNumber definition) = 0;
};

struct TableRow {
    Table* table = nullptr;
    RowId row;
    bool operator==(const TableRow&) const = default;
};

struct RowChange {
    TableRow place;
    std::shared_ptr<const RowValues> values;  // the same for all rows that follow one
};

class Relations {
public:
    Relations(Table& table, TableFamily* family) : table_(&table), family_(family) {}

    // kUnsupported when the other side of a relationship is not there.
    void RequireKnown() const;
    // kNoRelatedRecord when a reference of the row leads nowhere. Only references with a column
    // that is given are looked at, or all of them of a new row. The row's entries are made.
    void RequireParents(const RowValues& row, bool isNew, const ColumnValue& value) const;
    // Adds the rows that are deleted with this one, and the changes of those that refer to nothing
    // from then on. kRelatedRecords when a row stays that refers to it.
    void CascadeDelete(RowId row, const ColumnValue& old, std::vector<TableRow>& deletions,
                       std::vector<RowChange>& releases) const;
    // Adds the changes of the rows that refer to this one. kRelatedRecords when there are such and
    // the relationship does not cascade.
    void CascadeUpdate(const RowValues& given, const ColumnValue& old, const ColumnValue& now,
                       std::vector<RowChange>& changes) const;

private:
    struct Side {
        Table* table = nullptr;
        const TableIndex* index = nullptr;
    };
    [[nodiscard]] Side PartnerOf(const LogicalIndex& relation) const;
    // The values of the relationship's columns, or nothing when one of them is null.
    [[nodiscard]] std::optional<std::vector<Value>> Reference(const LogicalIndex& relation,
                                                              const ColumnValue& value) const;
    [[nodiscard]] std::vector<RowId> RowsOf(const Side& side,
                                            const std::vector<Value>& reference) const;

    Table* table_;
    TableFamily* family_;
};

}  // namespace jet
