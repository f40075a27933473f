#include "page/global_map.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bits.h"
#include "page/bytes.h"
#include "page/map_row.h"

namespace jet {

namespace {

// Pages 0 and 1, the header and this map itself, are never free.
constexpr std::uint32_t kFirstOrdinaryPage = 2;

void CheckTaken(std::uint32_t page, const Format& format) {
    if (page < kFirstOrdinaryPage) {
        ThrowDamaged("The file is damaged: its map of free pages offers the header.");
    }
    if (page >= LargestPageCount(format)) {
        throw Error(ErrorKind::kFileTooLarge,
                    "The file has reached the largest size that its format allows.");
    }
}

[[noreturn]] void ThrowUnknown() {
    ThrowDamaged("The file is damaged: its map of free pages is unknown.");
}

}  // namespace

MutableBytes GlobalMap::ChangeRow() {
    const MutableBytes page = operation_->Change(row_.page);
    const RowExtent extent = FindMapRow(page, pager_->FileFormat(), row_.slot);
    return Slice(page, extent.start, extent.length);
}

RowExtent GlobalMap::Extent() const {
    return FindMapRow(pager_->Page(row_.page).Data(), pager_->FileFormat(), row_.slot);
}

// The bits of a map that begin at `from`, to change one of them.
MutableBytes GlobalMap::ChangeBit(PageNumber page, std::size_t from, std::size_t bit) {
    return operation_->ChangePart(page, from + bit / 8, 1).subspan(from);
}

PageNumber GlobalMap::Take(PageNumber from) {
    const PageRef holder = pager_->Page(row_.page);
    switch (ReadU8(holder.Data(), Extent().start)) {
        case kInlineMap:
            return TakeInline(from);
        case kReferenceMap:
            return TakeReferenced(from);
        default:
            ThrowUnknown();
    }
}

PageNumber GlobalMap::TakeInline(PageNumber from) {
    const Format& format = pager_->FileFormat();
    const PageRef holder = pager_->Page(row_.page);
    const RowExtent extent = Extent();
    const Bytes row = Slice(holder.Data(), extent.start, extent.length);
    const std::uint32_t start = ReadU32(row, 1);
    if (start >= LargestPageCount(format)) ThrowUnknown();
    std::size_t bit = 8 * (row.size() - kInlineMapHead);
    const auto found =
        NextBit(row.subspan(kInlineMapHead), from.value < start ? 0 : from.value - start);
    if (found) {
        bit = *found;
    } else {
        const std::uint32_t longer = extent.length + 4;
        if (!LengthenMapRow(operation_->Change(row_.page), format, row_.slot, longer,
                            std::byte{0xFF})) {
            ConvertToReferences();
            return TakeReferenced(from);
        }
    }
    const std::uint32_t page = start + static_cast<std::uint32_t>(bit);
    CheckTaken(page, format);
    // Lengthening may have moved the row.
    ClearBit(ChangeBit(row_.page, Extent().start + kInlineMapHead, bit), bit);
    return PageNumber{page};
}

PageNumber GlobalMap::TakeReferenced(PageNumber from) {
    const Format& format = pager_->FileFormat();
    const std::uint32_t perRange = PagesOfMapPage(format);
    const PageRef holder = pager_->Page(row_.page);
    const RowExtent extent = Extent();
    const Bytes row = Slice(holder.Data(), extent.start, extent.length);
    const std::uint32_t ranges = (extent.length - 1) / 4;
    for (std::uint32_t range = from.value / perRange; range < ranges; ++range) {
        const std::uint32_t first = range * perRange;
        PageNumber mapPage{ReadU32(row, 1 + 4 * range)};
        // A range within the file that has no map page holds nothing free. One past the end of the
        // file is all free, whatever its pointer says.
        if (first >= pager_->PageCount()) {
            CheckTaken(first, format);
            mapPage = MakeMapPage(PageNumber{first}, range, first + 1);
        }
        if (!mapPage) continue;
        const PageRef map = pager_->Page(mapPage);
        if (!IsMapPage(map.Data())) ThrowUnknown();
        const auto bit =
            NextBit(map.Data().subspan(kMapPageHead), from.value < first ? 0 : from.value - first);
        if (!bit) continue;
        const std::uint32_t page = first + static_cast<std::uint32_t>(*bit);
        CheckTaken(page, format);
        ClearBit(ChangeBit(mapPage, kMapPageHead, *bit), *bit);
        return PageNumber{page};
    }
    throw Error(ErrorKind::kFileTooLarge,
                "The file has reached the largest size that its format allows.");
}

// The first page past an inline map without a single free page becomes its first map page.
void GlobalMap::ConvertToReferences() {
    const Format& format = pager_->FileFormat();
    const MutableBytes row = ChangeRow();
    const std::uint32_t end =
        ReadU32(row, 1) + static_cast<std::uint32_t>(8 * (row.size() - kInlineMapHead));
    CheckTaken(end, format);
    std::fill(row.begin(), row.end(), std::byte{0});
    WriteU8(row, 0, kReferenceMap);
    MakeMapPage(PageNumber{end}, end / PagesOfMapPage(format), end + 1);
}

// Makes `page` the map page of a range in which every page from `usedBelow` on is free.
PageNumber GlobalMap::MakeMapPage(PageNumber page, std::uint32_t range, std::uint32_t usedBelow) {
    const std::uint32_t perRange = PagesOfMapPage(pager_->FileFormat());
    operation_->Extend(page);
    const MutableBytes map = operation_->Change(page);
    std::fill(map.begin(), map.end(), std::byte{0});
    WriteU16(map, 0, kMapPageType);
    const MutableBytes bits = map.subspan(kMapPageHead);
    for (std::uint32_t bit = usedBelow - range * perRange; bit < perRange; ++bit) SetBit(bits, bit);
    WriteU32(ChangeRow(), 1 + 4 * range, page.value);
    return page;
}

void GlobalMap::GiveBack(PageNumber page) {
    const PageRef holder = pager_->Page(row_.page);
    const RowExtent extent = Extent();
    const Bytes row = Slice(holder.Data(), extent.start, extent.length);
    PageNumber mapPage = row_.page;
    std::size_t from = extent.start + kInlineMapHead;
    std::size_t size = extent.length - kInlineMapHead;
    std::uint32_t bit = page.value;
    if (ReadU8(row, 0) == kInlineMap) {
        const std::uint32_t start = ReadU32(row, 1);
        if (page.value < start) ThrowUnknown();
        bit = page.value - start;
    } else {
        const std::uint32_t perRange = PagesOfMapPage(pager_->FileFormat());
        mapPage = PageNumber{ReadU32(row, 1 + 4 * std::size_t{page.value / perRange})};
        if (!mapPage || !IsMapPage(pager_->Page(mapPage).Data())) ThrowUnknown();
        from = kMapPageHead;
        size = pager_->FileFormat().pageSize - kMapPageHead;
        bit = page.value % perRange;
    }
    const PageRef map = pager_->Page(mapPage);
    if (bit / 8 >= size || TestBit(map.Data().subspan(from), bit)) {
        ThrowDamaged("The file is damaged: a page that is in use counts as free.");
    }
    SetBit(ChangeBit(mapPage, from, bit), bit);
}

}  // namespace jet
