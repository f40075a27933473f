#include "table/row_store.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "record/other_bytes.h"

namespace jet {

namespace {

constexpr std::uint32_t kPointerSize = 4;
constexpr int kMostHops = 8;

[[noreturn]] void ThrowMissing() {
    ThrowDamaged("The file is damaged: a row that was moved cannot be found.");
}

}  // namespace

RowStore::RowStore(Pager& pager, PageNumber table, RowId ownedMap, RowId freeMap)
    : pager_(&pager), table_(table), owned_(pager, ownedMap), free_(pager, freeMap) {}

bool RowStore::IsOurs(Bytes page) const {
    return IsDataPage(page) && PageOwner(page) == table_.value;
}

RowId RowStore::FollowPointer(Bytes slot) const {
    if (slot.size() < kPointerSize) ThrowMissing();
    return RowId::FromPacked(ReadU32(slot, 0));
}

bool RowStore::Find(RowId row, StoredRow& into) const {
    const Format& format = pager_->FileFormat();
    into.target = PageRef();
    if (row.page.value >= pager_->PageCount()) return false;
    if (into.home.Number() != row.page || into.home.Data().empty()) {
        into.home = pager_->Page(row.page);
    }
    const Bytes page = into.home.Data();
    if (!IsOurs(page) || row.slot >= SlotCount(page, format)) return false;
    Slot slot = ReadSlot(page, format, row.slot);
    if (!IsRowSlot(slot.kind)) return false;
    into.bytes = Slice(page, slot.start, slot.length);
    for (int hops = 0; slot.kind == SlotKind::kPointer; ++hops) {
        if (hops == kMostHops) ThrowMissing();
        const RowId target = FollowPointer(into.bytes);
        PageRef targetPage = pager_->Page(target.page);
        if (!IsOurs(targetPage.Data())) ThrowMissing();
        slot = ReadSlot(targetPage.Data(), format, target.slot);
        if (slot.kind == SlotKind::kDeleted) ThrowMissing();
        into.bytes = Slice(targetPage.Data(), slot.start, slot.length);
        into.target = std::move(targetPage);
    }
    return true;
}

RowId RowStore::Insert(Operation& operation, Bytes row) {
    return Append(operation, row, SlotKind::kRow, PageNumber{});
}

RowId RowStore::Append(Operation& operation, Bytes row, SlotKind kind, PageNumber except) {
    const auto length = static_cast<std::uint32_t>(row.size());
    const PageNumber page = PageWithRoom(operation, length, except);
    return {page,
            AppendRow(ChangeToAppend(operation, page, length), pager_->FileFormat(), row, kind)};
}

PageNumber RowStore::PageWithRoom(Operation& operation, std::uint32_t length, PageNumber except) {
    const Format& format = pager_->FileFormat();
    std::optional<PageNumber> page = free_.NextFrom(roomHint_);
    bool fromStart = !roomHint_;
    while (true) {
        if (!page && fromStart) break;
        if (!page) {
            fromStart = true;
            page = free_.NextFrom(PageNumber{0});
            continue;
        }
        const PageRef candidate = pager_->Page(*page);
        if (!IsOurs(candidate.Data())) {
            ThrowDamaged("The file is damaged: a page of a table belongs to something else.");
        }
        if (*page != except) {
            if (HasRoomFor(candidate.Data(), format, length)) {
                roomHint_ = *page;
                return *page;
            }
            free_.Remove(operation, *page);
        }
        page = free_.NextFrom(PageNumber{page->value + 1});
    }
    const PageNumber fresh = operation.Allocate();
    StartDataPage(operation.Change(fresh), format, table_.value);
    owned_.Add(operation, fresh);
    free_.Add(operation, fresh);
    roomHint_ = fresh;
    return fresh;
}

void RowStore::Replace(Operation& operation, RowId row, Bytes bytes) {
    const Format& format = pager_->FileFormat();
    const auto size = static_cast<std::uint32_t>(bytes.size());
    RowId place = row;
    const PageRef home = pager_->Page(row.page);
    if (ReadSlot(home.Data(), format, row.slot).kind == SlotKind::kPointer) {
        place = FollowPointer(SlotBytes(home.Data(), format, row.slot));
    }
    const PageRef page = pager_->Page(place.page);
    if (!IsOurs(page.Data())) ThrowMissing();
    const Slot old = ReadSlot(page.Data(), format, place.slot);
    if (old.kind == SlotKind::kDeleted) ThrowMissing();
    // Files of other writers may hold a pointer to a pointer; it is made straight.
    if (old.kind == SlotKind::kPointer || !CanResize(page.Data(), format, place.slot, size)) {
        Move(operation, row, bytes);
        return;
    }
    if (old.length == size && Equal(Slice(page.Data(), old.start, size), bytes)) return;
    GiveOtherBytes(operation, place, bytes);
    if (size < old.length) EnterFree(operation, place.page);
}

// Puts the bytes on another page and makes the row's slot a pointer to them.
void RowStore::Move(Operation& operation, RowId row, Bytes bytes) {
    const Format& format = pager_->FileFormat();
    const MutableBytes home = operation.Change(row.page);
    if (ReadSlot(home, format, row.slot).kind == SlotKind::kPointer) {
        RowId old = FollowPointer(SlotBytes(home, format, row.slot));
        for (int hops = 0; old; ++hops) {
            const MutableBytes page = operation.Change(old.page);
            if (hops == kMostHops || !IsOurs(page)) ThrowMissing();
            const Slot slot = ReadSlot(page, format, old.slot);
            const RowId next = slot.kind == SlotKind::kPointer
                                   ? FollowPointer(SlotBytes(page, format, old.slot))
                                   : RowId{};
            RemoveSlot(operation, old);
            old = next;
        }
    }
    const RowId target = Append(operation, bytes, SlotKind::kTarget, row.page);
    ResizeRow(home, format, row.slot, kPointerSize);
    const Slot slot = ReadSlot(home, format, row.slot);
    WriteU32(home, slot.start, target.Packed());
    SetSlotKind(home, format, row.slot, SlotKind::kPointer);
    EnterFree(operation, row.page);
}

void RowStore::Remove(Operation& operation, RowId row) {
    const Format& format = pager_->FileFormat();
    RowId place = row;
    for (int hops = 0; place; ++hops) {
        RowId next;
        {
            const PageRef page = pager_->Page(place.page);
            if (hops > kMostHops || !IsOurs(page.Data())) ThrowMissing();
            const Slot slot = ReadSlot(page.Data(), format, place.slot);
            if (slot.kind == SlotKind::kDeleted) ThrowMissing();
            if (slot.kind == SlotKind::kPointer) {
                next = FollowPointer(SlotBytes(page.Data(), format, place.slot));
            }
        }
        RemoveSlot(operation, place);
        place = next;
    }
}

// A page whose last row was removed is given back to the file.
void RowStore::RemoveSlot(Operation& operation, RowId row) {
    const Format& format = pager_->FileFormat();
    const MutableBytes page = ChangeToDelete(operation, row.page, row.slot);
    DeleteRow(page, format, row.slot);
    if (HasLiveSlots(page, format)) {
        EnterFree(operation, row.page);
        return;
    }
    free_.Remove(operation, row.page);
    owned_.Remove(operation, row.page);
    operation.Free(row.page);
    if (roomHint_ == row.page) roomHint_ = PageNumber{};
}

void RowStore::EnterFree(Operation& operation, PageNumber page) {
    if (!free_.Contains(page)) free_.Add(operation, page);
    roomHint_ = std::min(roomHint_, page);
}

}  // namespace jet
