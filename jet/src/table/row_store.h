// The rows of a table on their data pages, without any knowledge of what is in them.
//
// A row keeps its place (page and slot) for life, since index entries name it. When it outgrows its
// page, the bytes move to another page and the slot becomes a pointer to them.
#pragma once

#include <cstdint>
#include <optional>

#include "page/operation.h"
#include "page/pager.h"
#include "page/types.h"
#include "page/usage_map.h"
#include "record/data_page.h"
#include "table/cursor_list.h"

namespace jet {

// A row that was found; the pins keep its bytes.
struct StoredRow {
    PageRef home;
    PageRef target;  // the page of the bytes, where they have moved
    Bytes bytes;
};

// Whether a slot stands for a row; the others are deleted, or hold the bytes of one.
inline bool IsRowSlot(SlotKind kind) {
    return kind == SlotKind::kRow || kind == SlotKind::kPointer;
}

class RowStore {
public:
    RowStore(Pager& pager, PageNumber table, RowId ownedMap, RowId freeMap);
    RowStore(const RowStore&) = delete;
    RowStore& operator=(const RowStore&) = delete;

    // False when no row is there (any more). kDamaged when a pointer leads nowhere.
    bool Find(RowId row, StoredRow& into) const;

    RowId Insert(Operation& operation, Bytes row);
    void Replace(Operation& operation, RowId row, Bytes bytes);
    void Remove(Operation& operation, RowId row);

    // What a cursor needs.
    [[nodiscard]] Pager& Pages() const { return *pager_; }
    [[nodiscard]] const UsageMap& OwnedPages() const { return owned_; }
    [[nodiscard]] bool IsOurs(Bytes page) const;
    [[nodiscard]] CursorList& Cursors() { return cursors_; }

private:
    [[nodiscard]] RowId FollowPointer(Bytes slot) const;
    RowId Append(Operation& operation, Bytes row, SlotKind kind, PageNumber except);
    PageNumber PageWithRoom(Operation& operation, std::uint32_t length, PageNumber except);
    void Move(Operation& operation, RowId row, Bytes bytes);
    void RemoveSlot(Operation& operation, RowId row);
    void EnterFree(Operation& operation, PageNumber page);

    Pager* pager_;
    PageNumber table_;
    UsageMap owned_;
    UsageMap free_;
    PageNumber roomHint_;  // where the last row went; pages below it are full or unlisted
    CursorList cursors_;
};

}  // namespace jet
