#include "table/cursor_list.h"

#include <algorithm>

#include "table/table_cursor.h"

namespace jet {

template <typename Visit>
void CursorList::ForEach(Visit visit) {
    for (TableCursor* cursor = first_; cursor != nullptr; cursor = cursor->next_) visit(*cursor);
}

void CursorList::MakeRoomForDeleted(std::size_t count) {
    if (deleted_.capacity() - deleted_.size() >= count) return;
    deleted_.reserve(deleted_.size() * 2 + count + 16);
}

void CursorList::RowDeleted(RowId row, bool inTransaction) noexcept {
    if (inTransaction) deleted_.push_back(row);
    ForEach([&](TableCursor& cursor) { cursor.RowDeleted(row); });
}

void CursorList::TransactionCommitted() noexcept {
    deleted_ = {};
    ForEach([](TableCursor& cursor) { cursor.TransactionEnded(); });
}

void CursorList::TransactionRolledBack() noexcept {
    std::vector<RowId> deleted;
    deleted.swap(deleted_);
    std::sort(deleted.begin(), deleted.end());
    ForEach([&](TableCursor& cursor) {
        cursor.TransactionRolledBack(deleted);
        cursor.TransactionEnded();
    });
}

}  // namespace jet
