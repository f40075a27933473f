#include "table/row_cursor.h"

#include <algorithm>

namespace jet {

bool RowCursor::Arrive(std::optional<RowId> row) {
    if (row) Seek(*row);
    return row.has_value();
}

bool RowCursor::SeekToFirst() {
    return Arrive(FirstOfPages(PageNumber{0}));
}

bool RowCursor::SeekToLast() {
    return Arrive(LastBefore(RowId{PageNumber{rows_->Pages().PageCount()}, 0}));
}

bool RowCursor::Next() {
    if (row_.page.value < rows_->Pages().PageCount()) {
        if (const auto next = SlotFrom(row_.page, row_.slot + 1U)) return Arrive(next);
    }
    return Arrive(FirstOfPages(PageNumber{row_.page.value + 1}));
}

bool RowCursor::Prev() {
    return Arrive(LastBefore(row_));
}

Bytes RowCursor::PageOf(PageNumber page) {
    Pager& pager = rows_->Pages();
    if (page_.Data().empty() || page_.Number() != page || pageChange_ != pager.ChangeCount()) {
        page_ = pager.Page(page);
        pageChange_ = pager.ChangeCount();
    }
    return page_.Data();
}

// The first row of the page from slot `from` on.
std::optional<RowId> RowCursor::SlotFrom(PageNumber page, std::uint32_t from) {
    const Format& format = rows_->Pages().FileFormat();
    const Bytes bytes = PageOf(page);
    if (!rows_->IsOurs(bytes)) return std::nullopt;
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
    const Format& format = rows_->Pages().FileFormat();
    const Bytes bytes = PageOf(page);
    if (!rows_->IsOurs(bytes)) return std::nullopt;
    for (std::uint32_t slot = std::min(end, SlotCount(bytes, format)); slot-- > 0;) {
        if (IsRowSlot(ReadSlotKind(bytes, format, slot))) {
            return RowId{page, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

std::optional<RowId> RowCursor::FirstOfPages(PageNumber from) {
    const UsageMap& owned = rows_->OwnedPages();
    for (auto page = owned.NextFrom(from); page;
         page = owned.NextFrom(PageNumber{page->value + 1})) {
        if (!rows_->IsOurs(PageOf(*page))) {
            ThrowDamaged("The file is damaged: a page of a table belongs to something else.");
        }
        if (const auto row = SlotFrom(*page, 0)) return row;
    }
    return std::nullopt;
}

const std::vector<PageNumber>& RowCursor::OwnedPages() {
    const std::uint64_t change = rows_->Pages().ChangeCount();
    if (!ownedKnown_ || ownedChange_ != change) {
        owned_.clear();
        rows_->OwnedPages().ForEach(PageNumber{0}, [this](PageNumber page) {
            owned_.push_back(page);
            return true;
        });
        ownedChange_ = change;
        ownedKnown_ = true;
    }
    return owned_;
}

std::optional<RowId> RowCursor::LastBefore(RowId row) {
    if (row.page.value < rows_->Pages().PageCount()) {
        if (const auto previous = SlotBefore(row.page, row.slot)) return previous;
    }
    const std::vector<PageNumber>& pages = OwnedPages();
    auto page = std::lower_bound(pages.begin(), pages.end(), row.page);
    while (page != pages.begin()) {
        --page;
        if (const auto previous = SlotBefore(*page, kMostSlots + 1)) return previous;
    }
    return std::nullopt;
}

}  // namespace jet
