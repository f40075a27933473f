#include "page/map_row.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "page/bytes.h"
#include "page/slotted_page.h"

namespace jet {

namespace {

[[noreturn]] void ThrowMissing() {
    ThrowDamaged("The file is damaged: a usage map is missing.");
}

struct Directory {
    std::uint32_t count = 0;
    std::uint32_t lowest = 0;  // start of the last row
    std::uint32_t room = 0;
};

Directory ReadDirectory(Bytes page, const Format& format) {
    Directory directory;
    if (!IsDataPage(page)) ThrowMissing();
    directory.count = SlotCount(page, format);
    directory.lowest = SlotEnd(page, format, directory.count);
    directory.room = PageRoom(page, format);
    return directory;
}

// Rows lie in slot order, so none may begin before the last one.
void RequireBelow(const Directory& directory, const RowExtent& row) {
    if (directory.lowest > row.start) {
        ThrowDamaged("The file is damaged: the rows of a usage-map page overlap.");
    }
}

void WriteRoom(MutableBytes page, const Format& format) {
    const Directory directory = ReadDirectory(page, format);
    WriteU16(page, 2, static_cast<std::uint16_t>(directory.room));
}

// Moves the rows from `slot` on by `distance` towards the page's start.
void ShiftRows(MutableBytes page, const Format& format, std::uint32_t slot,
               std::uint32_t distance) {
    const Directory directory = ReadDirectory(page, format);
    for (std::uint32_t i = slot; i < directory.count; ++i) {
        const std::uint16_t entry = ReadU16(page, SlotEntryAt(format, i));
        const std::uint32_t start = (entry & kSlotOffsetMask) - distance;
        WriteU16(
            page, SlotEntryAt(format, i),
            static_cast<std::uint16_t>((entry & ~kSlotOffsetMask) | (start & kSlotOffsetMask)));
    }
}

}  // namespace

RowExtent FindMapRow(Bytes page, const Format& format, std::uint8_t slot) {
    if (!IsDataPage(page)) ThrowMissing();
    const std::optional<Slot> row = FindSlot(page, format, slot);
    if (!row || row->kind != SlotKind::kRow || row->length == 0) ThrowMissing();
    return {.start = row->start, .length = row->length};
}

bool AppendMapRow(MutableBytes page, const Format& format, std::uint32_t length) {
    const Directory directory = ReadDirectory(page, format);
    if (directory.room < length + 2 || directory.count >= kMostSlots) return false;
    const std::uint32_t start = directory.lowest - length;
    const MutableBytes row = Slice(page, start, length);
    std::fill(row.begin(), row.end(), std::byte{0});
    WriteU16(page, SlotEntryAt(format, directory.count), static_cast<std::uint16_t>(start));
    WriteU16(page, format.rowCountAt, static_cast<std::uint16_t>(directory.count + 1));
    WriteRoom(page, format);
    return true;
}

bool LengthenMapRow(MutableBytes page, const Format& format, std::uint8_t slot,
                    std::uint32_t length, std::byte fill) {
    const RowExtent row = FindMapRow(page, format, slot);
    const Directory directory = ReadDirectory(page, format);
    const std::uint32_t more = length - row.length;
    if (more > directory.room) return false;
    const std::uint32_t end = row.start + row.length;
    RequireBelow(directory, row);
    std::memmove(page.data() + directory.lowest - more, page.data() + directory.lowest,
                 end - directory.lowest);
    std::fill(page.begin() + (end - more), page.begin() + end, fill);
    ShiftRows(page, format, slot, more);
    WriteRoom(page, format);
    return true;
}

void StartMapRowPage(MutableBytes page, const Format& format) {
    WriteU16(page, 0, kDataPageType);
    WriteU16(page, 2, static_cast<std::uint16_t>(format.pageSize - format.rowDirectoryAt));
}

bool IsMapPage(Bytes page) {
    return ReadU16(page, 0) == kMapPageType;
}

}  // namespace jet
