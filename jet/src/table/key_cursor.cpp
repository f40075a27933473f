#include "table/key_cursor.h"

#include <utility>

namespace jet {

// The row stays the current one, at the place that its new values give it. Where that place cannot
// be found, for want of memory say, the position keeps the old key, which leads to the same
// neighbors as before the change.
void KeyCursor::RowChanged() noexcept {
    if (index_->Obstacle()) return;
    try {
        StoredRow stored;
        if (!Rows().Find(Row(), stored)) return;
        const RowView view = table_->View(stored.bytes);
        TableIndex::RowKey key;
        index_->MakeRowKey([&](std::size_t column) { return table_->ReadValue(view, column); },
                           key);
        if (key.entered) entries_.SeekToEntry({std::move(key.key), Row()});
    } catch (...) {
        return;
    }
}

}  // namespace jet
