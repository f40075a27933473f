// The rows of a table on their data pages, without any knowledge of what is in them.
//
// A row keeps its place (page and slot) for life, since index entries name it. When it outgrows its
// page, the bytes move to another page and the slot becomes a pointer to them.
#pragma once

#include <cstdint>
#include <optional>

#include "page/pager.h"
#include "page/types.h"
#include "page/usage_map.h"
#include "record/data_page.h"

namespace jet {

// A row that was found; the pins keep its bytes.
struct StoredRow {
    PageRef home;
    PageRef target;  // the page of the bytes, where they have moved
    Bytes bytes;
};

class RowStore {
public:
    RowStore(Pager& pager, PageNumber table, RowId ownedMap, RowId freeMap);

    // False when no row is there (any more). kDamaged when a pointer leads nowhere.
    bool Find(RowId row, StoredRow& into) const;

    // These need an open Operation.
    RowId Insert(Bytes row);
    void Replace(RowId row, Bytes bytes);
    void Remove(RowId row);

    // Walking in stored order. A place need not hold a row any more.
    [[nodiscard]] std::optional<RowId> After(RowId row);
    [[nodiscard]] std::optional<RowId> Before(RowId row);
    [[nodiscard]] std::optional<RowId> First();
    [[nodiscard]] std::optional<RowId> Last();

private:
    [[nodiscard]] bool IsOurs(Bytes page) const;
    [[nodiscard]] RowId FollowPointer(Bytes slot) const;
    RowId Append(Bytes row, SlotKind kind, PageNumber except);
    PageNumber PageWithRoom(std::uint32_t length, PageNumber except);
    void Move(RowId row, Bytes bytes);
    void RemoveSlot(RowId row);
    void EnterFree(PageNumber page);
    [[nodiscard]] std::optional<RowId> FirstOfPages(PageNumber from);
    [[nodiscard]] std::optional<RowId> SlotAfter(PageNumber page, std::uint32_t from);
    [[nodiscard]] std::optional<RowId> SlotBefore(PageNumber page, std::uint32_t end);
    const PageRef& WalkPage(PageNumber page);
    const std::vector<PageNumber>& OwnedPages();

    Pager* pager_;
    PageNumber table_;
    UsageMap owned_;
    UsageMap free_;
    PageNumber roomHint_;  // where the last row went; pages below it are full or unlisted
    // The page of the walk stays pinned, so that a step within it is cheap.
    PageRef walkPage_;
    std::uint64_t walkChange_ = 0;
    std::vector<PageNumber> ownedPages_;
    std::uint64_t ownedPagesChange_ = 0;
    bool ownedPagesKnown_ = false;
};

}  // namespace jet
