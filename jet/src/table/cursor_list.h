// The cursors on the rows of one table. Here they learn of rows that are deleted and of
// transactions that end.
#pragma once

#include <cstddef>
#include <vector>

#include "page/types.h"

namespace jet {

class TableCursor;

class CursorList {
public:
    CursorList() = default;
    CursorList(const CursorList&) = delete;
    CursorList& operator=(const CursorList&) = delete;

    // Before so many rows are reported as deleted within a transaction: afterwards nothing may
    // fail.
    void MakeRoomForDeleted(std::size_t count);
    // Once the operation that deleted the row has been committed.
    void RowDeleted(RowId row, bool inTransaction) noexcept;
    void TransactionCommitted() noexcept;
    // Once the pages are as they were at its beginning.
    void TransactionRolledBack() noexcept;

private:
    friend class TableCursor;
    template <typename Visit>
    void ForEach(Visit visit);

    TableCursor* first_ = nullptr;
    std::vector<RowId> deleted_;  // by the open transaction
};

}  // namespace jet
