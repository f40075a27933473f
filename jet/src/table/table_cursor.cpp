#include "table/table_cursor.h"

#include <algorithm>

namespace jet {

TableCursor::TableCursor(RowStore& rows) : rows_(&rows), next_(rows.Cursors().first_) {
    if (next_ != nullptr) next_->previous_ = this;
    rows.Cursors().first_ = this;
}

TableCursor::~TableCursor() {
    if (next_ != nullptr) next_->previous_ = previous_;
    (previous_ == nullptr ? rows_->Cursors().first_ : previous_->next_) = next_;
}

void TableCursor::RowDeleted(RowId row) noexcept {
    if (row == row_) valid_ = false;
}

void TableCursor::TransactionRolledBack(std::span<const RowId> deleted) noexcept {
    if (!valid_) return;
    if (Survives(row_, deleted)) {
        RowChanged();
    } else {
        valid_ = false;
    }
}

// A place that was freed may have been given to another row, so a row that was deleted counts as
// gone although it is back.
bool TableCursor::Survives(RowId row, std::span<const RowId> deleted) const noexcept {
    if (std::binary_search(deleted.begin(), deleted.end(), row)) return false;
    try {
        StoredRow stored;
        return rows_->Find(row, stored);
    } catch (...) {
        // It cannot be read, so nobody can stand on it.
        return false;
    }
}

}  // namespace jet
