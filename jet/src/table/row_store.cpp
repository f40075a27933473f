#include "table/row_store.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::uint32_t kPointerSize = 4;
constexpr int kMostHops = 8;

[[noreturn]] void ThrowMissing() {
    ThrowDamaged("The file is damaged: a row that was moved cannot be found.");
}

bool IsVisible(SlotKind kind) {
    return kind == SlotKind::kRow || kind == SlotKind::kPointer;
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
    if (!IsVisible(slot.kind)) return false;
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

RowId RowStore::Insert(Bytes row) {
    return Append(row, SlotKind::kRow, PageNumber{});
}

RowId RowStore::Append(Bytes row, SlotKind kind, PageNumber except) {
    const PageNumber page = PageWithRoom(static_cast<std::uint32_t>(row.size()), except);
    return {page, AppendRow(pager_->Change(page), pager_->FileFormat(), row, kind)};
}

PageNumber RowStore::PageWithRoom(std::uint32_t length, PageNumber except) {
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
            free_.Remove(*page);
        }
        page = free_.NextFrom(PageNumber{page->value + 1});
    }
    const PageNumber fresh = pager_->Allocate();
    StartDataPage(pager_->Change(fresh), format, table_.value);
    owned_.Add(fresh);
    free_.Add(fresh);
    roomHint_ = fresh;
    return fresh;
}

void RowStore::Replace(RowId row, Bytes bytes) {
    const Format& format = pager_->FileFormat();
    const MutableBytes home = pager_->Change(row.page);
    const Slot slot = ReadSlot(home, format, row.slot);
    RowId place = row;
    if (slot.kind == SlotKind::kPointer) place = FollowPointer(SlotBytes(home, format, row.slot));
    const MutableBytes page = pager_->Change(place.page);
    if (!IsOurs(page)) ThrowMissing();
    const Slot old = ReadSlot(page, format, place.slot);
    if (old.kind == SlotKind::kDeleted) ThrowMissing();
    // Files of other writers may hold a pointer to a pointer; it is made straight.
    const bool fits = old.kind != SlotKind::kPointer &&
                      CanResize(page, format, place.slot, static_cast<std::uint32_t>(bytes.size()));
    if (!fits) {
        Move(row, bytes);
        return;
    }
    ResizeRow(page, format, place.slot, static_cast<std::uint32_t>(bytes.size()));
    const Slot resized = ReadSlot(page, format, place.slot);
    std::copy(bytes.begin(), bytes.end(), page.begin() + resized.start);
    if (bytes.size() < old.length) EnterFree(place.page);
}

// Puts the bytes on another page and makes the row's slot a pointer to them.
void RowStore::Move(RowId row, Bytes bytes) {
    const Format& format = pager_->FileFormat();
    const MutableBytes home = pager_->Change(row.page);
    if (ReadSlot(home, format, row.slot).kind == SlotKind::kPointer) {
        RowId old = FollowPointer(SlotBytes(home, format, row.slot));
        for (int hops = 0; old; ++hops) {
            const MutableBytes page = pager_->Change(old.page);
            if (hops == kMostHops || !IsOurs(page)) ThrowMissing();
            const Slot slot = ReadSlot(page, format, old.slot);
            const RowId next = slot.kind == SlotKind::kPointer
                                   ? FollowPointer(SlotBytes(page, format, old.slot))
                                   : RowId{};
            RemoveSlot(old);
            old = next;
        }
    }
    const RowId target = Append(bytes, SlotKind::kTarget, row.page);
    ResizeRow(home, format, row.slot, kPointerSize);
    const Slot slot = ReadSlot(home, format, row.slot);
    WriteU32(home, slot.start, target.Packed());
    SetSlotKind(home, format, row.slot, SlotKind::kPointer);
    EnterFree(row.page);
}

void RowStore::Remove(RowId row) {
    const Format& format = pager_->FileFormat();
    RowId place = row;
    for (int hops = 0; place; ++hops) {
        const MutableBytes page = pager_->Change(place.page);
        if (hops > kMostHops || !IsOurs(page)) ThrowMissing();
        const Slot slot = ReadSlot(page, format, place.slot);
        if (slot.kind == SlotKind::kDeleted) ThrowMissing();
        const RowId next = slot.kind == SlotKind::kPointer
                               ? FollowPointer(SlotBytes(page, format, place.slot))
                               : RowId{};
        RemoveSlot(place);
        place = next;
    }
}

// A page whose last row has gone is given back to the file.
void RowStore::RemoveSlot(RowId row) {
    const Format& format = pager_->FileFormat();
    const MutableBytes page = pager_->Change(row.page);
    DeleteRow(page, format, row.slot);
    if (HasLiveSlots(page, format)) {
        EnterFree(row.page);
        return;
    }
    free_.Remove(row.page);
    owned_.Remove(row.page);
    pager_->Free(row.page);
    if (roomHint_ == row.page) roomHint_ = PageNumber{};
}

void RowStore::EnterFree(PageNumber page) {
    if (!free_.Contains(page)) free_.Add(page);
    roomHint_ = std::min(roomHint_, page);
}

const PageRef& RowStore::WalkPage(PageNumber page) {
    if (walkPage_.Data().empty() || walkPage_.Number() != page ||
        walkChange_ != pager_->ChangeCount()) {
        walkPage_ = pager_->Page(page);
        walkChange_ = pager_->ChangeCount();
    }
    return walkPage_;
}

// The first row of the page from slot `from` on.
std::optional<RowId> RowStore::SlotAfter(PageNumber page, std::uint32_t from) {
    const Format& format = pager_->FileFormat();
    const Bytes bytes = WalkPage(page).Data();
    if (!IsOurs(bytes)) return std::nullopt;
    const std::uint32_t count = SlotCount(bytes, format);
    for (std::uint32_t slot = from; slot < count; ++slot) {
        if (IsVisible(ReadSlotKind(bytes, format, slot))) {
            return RowId{page, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

// The last row of the page before slot `end`.
std::optional<RowId> RowStore::SlotBefore(PageNumber page, std::uint32_t end) {
    const Format& format = pager_->FileFormat();
    const Bytes bytes = WalkPage(page).Data();
    if (!IsOurs(bytes)) return std::nullopt;
    for (std::uint32_t slot = std::min(end, SlotCount(bytes, format)); slot-- > 0;) {
        if (IsVisible(ReadSlotKind(bytes, format, slot))) {
            return RowId{page, static_cast<std::uint8_t>(slot)};
        }
    }
    return std::nullopt;
}

std::optional<RowId> RowStore::FirstOfPages(PageNumber from) {
    for (auto page = owned_.NextFrom(from); page;
         page = owned_.NextFrom(PageNumber{page->value + 1})) {
        if (!IsOurs(WalkPage(*page).Data())) {
            ThrowDamaged("The file is damaged: a page of a table belongs to something else.");
        }
        if (const auto row = SlotAfter(*page, 0)) return row;
    }
    return std::nullopt;
}

std::optional<RowId> RowStore::First() {
    return FirstOfPages(PageNumber{0});
}

std::optional<RowId> RowStore::After(RowId row) {
    if (row.page.value < pager_->PageCount()) {
        if (const auto next = SlotAfter(row.page, row.slot + 1U)) return next;
    }
    return FirstOfPages(PageNumber{row.page.value + 1});
}

// A map cannot be walked backward, so its members are kept while nothing changes.
const std::vector<PageNumber>& RowStore::OwnedPages() {
    if (!ownedPagesKnown_ || ownedPagesChange_ != pager_->ChangeCount()) {
        ownedPages_.clear();
        owned_.ForEach(PageNumber{0}, [this](PageNumber page) {
            ownedPages_.push_back(page);
            return true;
        });
        ownedPagesChange_ = pager_->ChangeCount();
        ownedPagesKnown_ = true;
    }
    return ownedPages_;
}

std::optional<RowId> RowStore::Before(RowId row) {
    if (row.page.value < pager_->PageCount()) {
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

std::optional<RowId> RowStore::Last() {
    return Before(RowId{PageNumber{pager_->PageCount()}, 0});
}

}  // namespace jet
