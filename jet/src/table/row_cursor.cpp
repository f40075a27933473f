#include "table/row_cursor.h"

#include <algorithm>

namespace jet {

bool RowCursor::ArriveAt(std::optional<RowId> row) {
    if (row) Arrive(*row);
    return row.has_value();
}

bool RowCursor::SeekToFirst() {
    return ArriveAt(FirstOfPages(PageNumber{0}));
}

bool RowCursor::SeekToLast() {
    return ArriveAt(LastOfPages(PageNumber{Rows().Pages().PageCount()}));
}

bool RowCursor::Next() {
    const RowId row = Row();
    if (row.page.value < Rows().Pages().PageCount()) {
        if (const auto next = SlotFrom(row.page, row.slot + 1U)) return ArriveAt(next);
    }
    return ArriveAt(FirstOfPages(PageNumber{row.page.value + 1}));
}

bool RowCursor::Prev() {
    const RowId row = Row();
    if (row.page.value < Rows().Pages().PageCount()) {
        if (const auto previous = SlotBefore(row.page, row.slot)) return ArriveAt(previous);
    }
    return ArriveAt(LastOfPages(row.page));
}

Bytes RowCursor::PageOf(PageNumber page) {
    Pager& pager = Rows().Pages();
    if (page_.Data().empty() || page_.Number() != page || change_ != pager.ChangeCount()) {
        page_ = pager.Page(page);
        change_ = pager.ChangeCount();
    }
    return page_.Data();
}

// The first row of the page from slot `from` on.
std::optional<RowId> RowCursor::SlotFrom(PageNumber page, std::uint32_t from) {
    const Format& format = Rows().Pages().FileFormat();
    const Bytes bytes = PageOf(page);
    if (!Rows().IsOurs(bytes)) return std::nullopt;
    const std::uint32_t count = SlotCount(bytes, format);
    for (std::uint32_t slot = from; slot < count; ++slot) {
        if (IsRowSlot(ReadSlotKind(bytes, format, slot))) {
            return RowId{page, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

// The last row of the page before slot `end`.
std::optional<RowId> RowCursor::SlotBefore(PageNumber page, std::uint32_t end) {
    const Format& format = Rows().Pages().FileFormat();
    const Bytes bytes = PageOf(page);
    if (!Rows().IsOurs(bytes)) return std::nullopt;
    for (std::uint32_t slot = std::min(end, SlotCount(bytes, format)); slot-- > 0;) {
        if (IsRowSlot(ReadSlotKind(bytes, format, slot))) {
            return RowId{page, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

void RowCursor::RequireOwned(PageNumber page) {
    if (Rows().IsOurs(PageOf(page))) return;
    ThrowDamaged("The file is damaged: a page of a table belongs to something else.");
}

std::optional<RowId> RowCursor::FirstOfPages(PageNumber from) {
    const UsageMap& owned = Rows().OwnedPages();
    for (auto page = owned.NextFrom(from); page;
         page = owned.NextFrom(PageNumber{page->value + 1})) {
        RequireOwned(*page);
        if (const auto row = SlotFrom(*page, 0)) return row;
    }
    return std::nullopt;
}

std::optional<RowId> RowCursor::LastOfPages(PageNumber end) {
    const UsageMap& owned = Rows().OwnedPages();
    for (auto page = owned.LastBefore(end); page; page = owned.LastBefore(*page)) {
        RequireOwned(*page);
        if (const auto row = SlotBefore(*page, kMostSlots + 1)) return row;
    }
    return std::nullopt;
}

}  // namespace jet
