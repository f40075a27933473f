#include "page/usage_map.h"

#include <algorithm>
#include <vector>

#include "jet/error.h"
#include "page/bits.h"
#include "page/bytes.h"
#include "page/map_row.h"
#include "page/slotted_page.h"

namespace jet {

namespace {

constexpr std::uint32_t kLargestPageNumber = 0xFFFFFF;

[[noreturn]] void ThrowUnknownMap() {
    ThrowDamaged("The file is damaged: a usage map is unknown.");
}

// One map as it lies on its page.
class MapView {
public:
    MapView(Bytes page, const Format& format, std::uint8_t slot)
        : extent_(FindMapRow(page, format, slot)),
          row_(Slice(page, extent_.start, extent_.length)),
          kind_(ReadU8(row_, 0)) {
        if (kind_ != kInlineMap && kind_ != kReferenceMap) ThrowUnknownMap();
        if (kind_ == kInlineMap) {
            start_ = ReadU32(row_, 1);
            if (start_ > kLargestPageNumber) ThrowUnknownMap();
        }
    }

    [[nodiscard]] bool IsInline() const { return kind_ == kInlineMap; }
    [[nodiscard]] const RowExtent& Extent() const { return extent_; }
    // Inline maps.
    [[nodiscard]] std::uint32_t Start() const { return start_; }
    [[nodiscard]] Bytes Bits() const { return row_.subspan(kInlineMapHead); }
    [[nodiscard]] std::uint32_t Coverage() const { return 8 * (extent_.length - kInlineMapHead); }
    [[nodiscard]] bool Covers(std::uint32_t page) const {
        return page >= start_ && page - start_ < Coverage();
    }
    // Reference maps.
    [[nodiscard]] std::uint32_t RangeCount() const { return (extent_.length - 1) / 4; }
    [[nodiscard]] std::uint32_t MapPageOf(std::uint32_t range) const {
        return ReadU32(row_, 1 + 4 * range);
    }

private:
    RowExtent extent_;
    Bytes row_;
    std::uint8_t kind_;
    std::uint32_t start_ = 0;
};

// The map page of a range, or an empty reference where the range has none.
PageRef OpenMapPage(Pager& pager, const MapView& map, std::uint32_t range) {
    const std::uint32_t number = map.MapPageOf(range);
    if (number == 0) return {};
    const std::uint64_t first = std::uint64_t{range} * PagesOfMapPage(pager.FileFormat());
    // Real files hold meaningless pointers for ranges that the file does not reach.
    if (first >= pager.PageCount()) return {};
    PageRef page = pager.Page(PageNumber{number});
    if (!IsMapPage(page.Data())) ThrowDamaged("The file is damaged: a usage-map page is missing.");
    return page;
}

std::optional<PageNumber> NextInline(const MapView& map, PageNumber from) {
    const std::uint32_t first = from.value < map.Start() ? 0 : from.value - map.Start();
    const auto bit = NextBit(map.Bits(), first);
    if (!bit) return std::nullopt;
    return PageNumber{map.Start() + static_cast<std::uint32_t>(*bit)};
}

std::optional<PageNumber> NextReferenced(Pager& pager, const MapView& map, PageNumber from) {
    const std::uint32_t perRange = PagesOfMapPage(pager.FileFormat());
    for (std::uint32_t range = from.value / perRange; range < map.RangeCount(); ++range) {
        const PageRef page = OpenMapPage(pager, map, range);
        if (page.Data().empty()) continue;
        const std::uint32_t first = range * perRange;
        const auto bit =
            NextBit(page.Data().subspan(kMapPageHead), from.value < first ? 0 : from.value - first);
        if (bit) return PageNumber{first + static_cast<std::uint32_t>(*bit)};
    }
    return std::nullopt;
}

std::optional<PageNumber> LastInline(const MapView& map, PageNumber end) {
    if (end.value <= map.Start()) return std::nullopt;
    const auto bit = LastBit(map.Bits(), end.value - map.Start());
    if (!bit) return std::nullopt;
    return PageNumber{map.Start() + static_cast<std::uint32_t>(*bit)};
}

std::optional<PageNumber> LastReferenced(Pager& pager, const MapView& map, PageNumber end) {
    const std::uint32_t perRange = PagesOfMapPage(pager.FileFormat());
    const std::uint32_t reached = end.value / perRange + (end.value % perRange == 0 ? 0 : 1);
    for (std::uint32_t range = std::min(map.RangeCount(), reached); range-- > 0;) {
        const PageRef page = OpenMapPage(pager, map, range);
        if (page.Data().empty()) continue;
        const std::uint32_t first = range * perRange;
        const auto bit = LastBit(page.Data().subspan(kMapPageHead), end.value - first);
        if (bit) return PageNumber{first + static_cast<std::uint32_t>(*bit)};
    }
    return std::nullopt;
}

std::vector<PageNumber> Members(const UsageMap& map) {
    std::vector<PageNumber> members;
    map.ForEach(PageNumber{0}, [&](PageNumber page) {
        members.push_back(page);
        return true;
    });
    return members;
}

// An inline map that begins at `start` and holds exactly `members`, all of them within it.
void RewriteInline(MutableBytes row, std::uint32_t start, const std::vector<PageNumber>& members) {
    std::fill(row.begin(), row.end(), std::byte{0});
    WriteU32(row, 1, start);
    for (const PageNumber member : members) {
        SetBit(row.subspan(kInlineMapHead), member.value - start);
    }
}

MutableBytes ChangeRow(Operation& operation, RowId row) {
    const MutableBytes page = operation.Change(row.page);
    const RowExtent extent = FindMapRow(page, operation.FileFormat(), row.slot);
    return Slice(page, extent.start, extent.length);
}

// The bits of a map that begin at `from`, to change one of them.
MutableBytes ChangeBit(Operation& operation, PageNumber page, std::size_t from, std::size_t bit) {
    return operation.ChangePart(page, from + bit / 8, 1).subspan(from);
}

// Sets the bit in a map page that is there already. False, and nothing done, in any other case.
bool AddToMapPage(Operation& operation, RowId row, std::uint32_t range, std::uint32_t bit) {
    const PageRef holder = operation.Pages().Page(row.page);
    const MapView map(holder.Data(), operation.FileFormat(), row.slot);
    if (map.IsInline() || range >= map.RangeCount()) return false;
    const PageNumber mapPage{map.MapPageOf(range)};
    if (!mapPage) return false;
    if (!IsMapPage(operation.Pages().Page(mapPage).Data())) {
        ThrowDamaged("The file is damaged: a usage-map page is missing.");
    }
    SetBit(ChangeBit(operation, mapPage, kMapPageHead, bit), bit);
    return true;
}

// Sets the page's bit in a reference map, with a new map page where the range has none.
void AddReferenced(Operation& operation, RowId row, PageNumber page) {
    const Format& format = operation.FileFormat();
    const std::uint32_t range = page.value / PagesOfMapPage(format);
    const std::uint32_t bit = page.value % PagesOfMapPage(format);
    if (AddToMapPage(operation, row, range, bit)) return;
    MutableBytes bytes = ChangeRow(operation, row);
    if (bytes.size() < 1 + 4 * (range + 1)) {
        if (!LengthenMapRow(operation.Change(row.page), format, row.slot, 1 + 4 * (range + 1),
                            std::byte{0})) {
            throw Error(ErrorKind::kFileTooLarge, "A table has no room to grow any further.");
        }
        bytes = ChangeRow(operation, row);
    }
    PageNumber mapPage{ReadU32(bytes, 1 + 4 * range)};
    if (!mapPage) {
        mapPage = operation.Allocate();
        WriteU16(operation.Change(mapPage), 0, kMapPageType);
        // Allocating may have moved the row.
        WriteU32(ChangeRow(operation, row), 1 + 4 * range, mapPage.value);
    }
    const MutableBytes target = operation.Change(mapPage);
    if (!IsMapPage(target)) ThrowDamaged("The file is damaged: a usage-map page is missing.");
    SetBit(target.subspan(kMapPageHead), bit);
}

void ConvertToReferences(Operation& operation, RowId row, const std::vector<PageNumber>& members) {
    const MutableBytes bytes = ChangeRow(operation, row);
    std::fill(bytes.begin(), bytes.end(), std::byte{0});
    WriteU8(bytes, 0, kReferenceMap);
    for (const PageNumber member : members) AddReferenced(operation, row, member);
}

// Lengthens an inline map whose members reach back too far for another start, the usual way for the
// map of a table that grows. False, and nothing done, in any other case.
bool AddBehind(Operation& operation, const UsageMap& map, PageNumber page) {
    const RowId row = map.Row();
    const MutableBytes bytes = ChangeRow(operation, row);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t coverage = 8 * (length - kInlineMapHead);
    const std::uint32_t start = ReadU32(bytes, 1);
    const auto first = map.NextFrom(PageNumber{0});
    const bool goesBack = first && first->value - first->value % 8 == start;
    if (page.value < start + coverage || page.value < coverage || !goesBack) return false;
    const std::uint32_t steps = (page.value - start - coverage) / 32 + 1;
    if (!LengthenMapRow(operation.Change(row.page), operation.FileFormat(), row.slot,
                        length + 4 * steps, std::byte{0})) {
        return false;
    }
    SetBit(ChangeRow(operation, row).subspan(kInlineMapHead), page.value - start);
    return true;
}

// Lets an inline map reach a page outside it: by another start where the members are close
// together, else by a longer row, else as a reference map.
void AddBeyond(Operation& operation, const UsageMap& map, PageNumber page) {
    if (AddBehind(operation, map, page)) return;
    const RowId row = map.Row();
    std::vector<PageNumber> members = Members(map);
    members.insert(std::lower_bound(members.begin(), members.end(), page), page);
    const std::uint32_t last = members.back().value;
    const auto length = static_cast<std::uint32_t>(ChangeRow(operation, row).size());
    const std::uint32_t coverage = 8 * (length - kInlineMapHead);
    const std::uint32_t near = members.front().value & ~7U;
    const std::uint32_t start = last < coverage ? 0 : near;
    if (last - start < coverage) {
        RewriteInline(ChangeRow(operation, row), start, members);
        return;
    }
    const std::uint32_t oldStart = ReadU32(ChangeRow(operation, row), 1);
    const std::uint32_t grownStart = std::min(oldStart, near);
    const std::uint32_t steps = (last - grownStart - coverage) / 32 + 1;
    if (LengthenMapRow(operation.Change(row.page), operation.FileFormat(), row.slot,
                       length + 4 * steps, std::byte{0})) {
        RewriteInline(ChangeRow(operation, row), grownStart, members);
        return;
    }
    ConvertToReferences(operation, row, members);
}

}  // namespace

bool UsageMap::Contains(PageNumber page) const {
    const PageRef holder = pager_->Page(row_.page);
    const MapView map(holder.Data(), pager_->FileFormat(), row_.slot);
    if (map.IsInline())
        return map.Covers(page.value) && TestBit(map.Bits(), page.value - map.Start());
    const std::uint32_t perRange = PagesOfMapPage(pager_->FileFormat());
    const std::uint32_t range = page.value / perRange;
    if (range >= map.RangeCount()) return false;
    const PageRef mapPage = OpenMapPage(*pager_, map, range);
    return !mapPage.Data().empty() &&
           TestBit(mapPage.Data().subspan(kMapPageHead), page.value % perRange);
}

std::optional<PageNumber> UsageMap::NextFrom(PageNumber from) const {
    const PageRef holder = pager_->Page(row_.page);
    const MapView map(holder.Data(), pager_->FileFormat(), row_.slot);
    return map.IsInline() ? NextInline(map, from) : NextReferenced(*pager_, map, from);
}

std::optional<PageNumber> UsageMap::LastBefore(PageNumber end) const {
    const PageRef holder = pager_->Page(row_.page);
    const MapView map(holder.Data(), pager_->FileFormat(), row_.slot);
    return map.IsInline() ? LastInline(map, end) : LastReferenced(*pager_, map, end);
}

void UsageMap::ForEach(PageNumber from, const std::function<bool(PageNumber)>& visit) const {
    std::optional<PageNumber> page = NextFrom(from);
    while (page && visit(*page)) page = NextFrom(PageNumber{page->value + 1});
}

void UsageMap::Add(Operation& operation, PageNumber page) {
    bool isInline = false;
    {
        const PageRef holder = pager_->Page(row_.page);
        const MapView map(holder.Data(), pager_->FileFormat(), row_.slot);
        isInline = map.IsInline();
        if (isInline && map.Covers(page.value)) {
            const std::uint32_t bit = page.value - map.Start();
            const std::size_t bits = map.Extent().start + kInlineMapHead;
            SetBit(ChangeBit(operation, row_.page, bits, bit), bit);
            return;
        }
    }
    if (isInline) {
        AddBeyond(operation, *this, page);
    } else {
        AddReferenced(operation, row_, page);
    }
}

void UsageMap::Remove(Operation& operation, PageNumber page) {
    if (!Contains(page)) return;
    const PageRef holder = pager_->Page(row_.page);
    const MapView map(holder.Data(), pager_->FileFormat(), row_.slot);
    if (map.IsInline()) {
        const std::uint32_t bit = page.value - map.Start();
        const std::size_t bits = map.Extent().start + kInlineMapHead;
        ClearBit(ChangeBit(operation, row_.page, bits, bit), bit);
        return;
    }
    const std::uint32_t perRange = PagesOfMapPage(pager_->FileFormat());
    const PageNumber mapPage{map.MapPageOf(page.value / perRange)};
    const std::uint32_t bit = page.value % perRange;
    ClearBit(ChangeBit(operation, mapPage, kMapPageHead, bit), bit);
}

namespace {

// Where the owned-pages map of MSysObjects lies: a page of map rows that every file has.
PageNumber FirstMapRowPage(Pager& pager) {
    const PageNumber objects = pager.Header().objects;
    if (!objects || objects.value >= pager.PageCount()) return {};
    const Format& format = pager.FileFormat();
    const std::uint32_t ownedMapAt = format.tdefHeaderSize - 8;
    return RowId::FromPacked(ReadU32(pager.Page(objects).Data(), ownedMapAt)).page;
}

// Page 1 is for the global maps, and a page with another owner is not one for map rows.
bool TakesMapRows(Pager& pager, PageNumber page) {
    if (page.value < 2 || page.value >= pager.PageCount()) return false;
    const PageRef holder = pager.Page(page);
    return IsDataPage(holder.Data()) && PageOwner(holder.Data()) == 0;
}

}  // namespace

UsageMap UsageMap::Create(Operation& operation) {
    Pager& pager = operation.Pages();
    const Format& format = pager.FileFormat();
    for (const PageNumber page : {operation.MapRowPage(), FirstMapRowPage(pager)}) {
        if (!TakesMapRows(pager, page)) continue;
        const std::uint32_t slot = SlotCount(pager.Page(page).Data(), format);
        if (AppendMapRow(operation.Change(page), format, format.initialMapRow)) {
            return {pager, RowId{page, static_cast<std::uint8_t>(slot)}};
        }
    }
    const PageNumber page = operation.Allocate();
    StartMapRowPage(operation.Change(page), format);
    AppendMapRow(operation.Change(page), format, format.initialMapRow);
    operation.MapRowPage() = page;
    return {pager, RowId{page, 0}};
}

}  // namespace jet
