// A position among rows of a table, in the order of its kind: as they are stored (RowCursor), as an
// index has them (KeyCursor), or as in a list (ListCursor).
//
// Each verb says whether there is such a row. Where there is none, and when it throws, the cursor
// stays where it was. A row that is deleted, by whomever, leaves the cursor at its place, not
// valid, and so does the rollback of the transaction that added it: another row that is given the
// place is never taken for it. The neighbors of a row that is gone are those of its place.
#pragma once

#include <span>

#include "index/index_tree.h"
#include "page/types.h"
#include "table/row_store.h"

namespace jet {

class TableIndex;

// Where a row was found in an index; by no index, nowhere.
struct IndexPlace {
    const TableIndex* index = nullptr;
    EntryPlace entry;
};

class TableCursor {
public:
    TableCursor(const TableCursor&) = delete;
    TableCursor& operator=(const TableCursor&) = delete;
    virtual ~TableCursor();

    // Whether it is on a row that is there.
    [[nodiscard]] bool Valid() const { return valid_; }
    // The row, or the one that was there.
    [[nodiscard]] RowId Row() const { return row_; }
    [[nodiscard]] virtual IndexPlace Place() const { return {}; }

    virtual bool SeekToFirst() = 0;
    virtual bool SeekToLast() = 0;
    virtual bool Next() = 0;
    virtual bool Prev() = 0;

    // The values of the row that it is on were changed.
    virtual void RowChanged() noexcept {}
    // A row was added through who holds the cursor: a list takes it in. Room is made before the row
    // is added, since afterwards nothing may fail.
    virtual void MakeRoomForRow() {}
    virtual void RowAdded(RowId row) noexcept { static_cast<void>(row); }

protected:
    // The rows must outlive it.
    explicit TableCursor(RowStore& rows);
    [[nodiscard]] RowStore& Rows() const { return *rows_; }
    void Arrive(RowId row) {
        row_ = row;
        valid_ = true;
    }

    virtual void RowDeleted(RowId row) noexcept;
    virtual void TransactionEnded() noexcept {}
    // `deleted` are the rows that the transaction had deleted, sorted; they are back.
    virtual void TransactionRolledBack(std::span<const RowId> deleted) noexcept;
    // Whether a row is there that was there before the transaction, too.
    [[nodiscard]] bool Survives(RowId row, std::span<const RowId> deleted) const noexcept;

private:
    friend class CursorList;

    RowStore* rows_;
    TableCursor* next_;
    TableCursor* previous_ = nullptr;
    RowId row_;
    bool valid_ = false;
};

}  // namespace jet
