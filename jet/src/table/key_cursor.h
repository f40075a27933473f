// The rows of a table in the order of an index.
#pragma once

#include "index/index_cursor.h"
#include "table/table.h"
#include "table/table_cursor.h"

namespace jet {

class KeyCursor final : public TableCursor {
public:
    // The index is one of the table's. Both must outlive it.
    KeyCursor(Table& table, const TableIndex& index)
        : TableCursor(table.Rows()), table_(&table), index_(&index), entries_(index.Tree()) {}

    // The key of the row that it is on.
    [[nodiscard]] const Key& RowKey() const { return entries_.Entry().key; }
    [[nodiscard]] IndexPlace Place() const override { return {index_, entries_.Place()}; }

    bool SeekToFirst() override { return ArriveAt(entries_.SeekToFirst()); }
    bool SeekToLast() override { return ArriveAt(entries_.SeekToLast()); }
    bool Seek(Bytes search, SeekTo to) { return ArriveAt(entries_.Seek(search, to)); }
    bool Next() override { return ArriveAt(entries_.Next()); }
    bool Prev() override { return ArriveAt(entries_.Prev()); }

    void RowChanged() noexcept override;

private:
    bool ArriveAt(bool found) {
        if (found) Arrive(entries_.Entry().row);
        return found;
    }

    Table* table_;
    const TableIndex* index_;
    IndexCursor entries_;
};

}  // namespace jet
