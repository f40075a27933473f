#include "page/map_row.h"

#include <algorithm>
#include <cstring>

#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::uint16_t kOffsetMask = 0x1FFF;
constexpr std::uint16_t kDeletedRow = 0xC000;
constexpr std::uint32_t kMostRows = 255;

std::uint32_t RowCount(Bytes page, const Format& format) {
    if (ReadU16(page, 0) != kDataPageType)
        ThrowDamaged("The file is damaged: a usage map is missing.");
    const std::uint32_t count = ReadU16(page, format.rowCountAt);
    if (count > kMostRows + 1) ThrowDamaged("The file is damaged: a page has too many rows.");
    return count;
}

std::uint32_t SlotAt(const Format& format, std::uint32_t slot) {
    return format.rowDirectoryAt + 2 * slot;
}

std::uint32_t RowStart(Bytes page, const Format& format, std::uint32_t slot) {
    return ReadU16(page, SlotAt(format, slot)) & kOffsetMask;
}

// The end of a row; that of slot 0 is the page's end.
std::uint32_t RowEnd(Bytes page, const Format& format, std::uint32_t slot) {
    return slot == 0 ? format.pageSize : RowStart(page, format, slot - 1);
}

struct Directory {
    std::uint32_t count = 0;
    std::uint32_t lowest = 0;  // start of the last row
    std::uint32_t room = 0;
};

Directory ReadDirectory(Bytes page, const Format& format) {
    Directory directory;
    directory.count = RowCount(page, format);
    directory.lowest = RowEnd(page, format, directory.count);
    const std::uint32_t used = SlotAt(format, directory.count);
    if (directory.lowest < used || directory.lowest > format.pageSize) {
        ThrowDamaged("The file is damaged: the rows of a usage-map page overlap.");
    }
    directory.room = directory.lowest - used;
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
        const std::uint16_t entry = ReadU16(page, SlotAt(format, i));
        const std::uint32_t start = (entry & kOffsetMask) - distance;
        WriteU16(page, SlotAt(format, i),
                 static_cast<std::uint16_t>((entry & ~kOffsetMask) | (start & kOffsetMask)));
    }
}

}  // namespace

RowExtent FindMapRow(Bytes page, const Format& format, std::uint8_t slot) {
    if (slot >= RowCount(page, format)) {
        ThrowDamaged("The file is damaged: a usage map is missing.");
    }
    const std::uint16_t entry = ReadU16(page, SlotAt(format, slot));
    const std::uint32_t start = entry & kOffsetMask;
    const std::uint32_t end = RowEnd(page, format, slot);
    if ((entry & kDeletedRow) != 0 || start >= end || end > format.pageSize ||
        start < SlotAt(format, slot + 1U)) {
        ThrowDamaged("The file is damaged: a usage map is missing.");
    }
    return {.start = start, .length = end - start};
}

bool AppendMapRow(MutableBytes page, const Format& format, std::uint32_t length) {
    const Directory directory = ReadDirectory(page, format);
    if (directory.room < length + 2 || directory.count >= kMostRows) return false;
    const std::uint32_t start = directory.lowest - length;
    const MutableBytes row = Slice(page, start, length);
    std::fill(row.begin(), row.end(), std::byte{0});
    WriteU16(page, SlotAt(format, directory.count), static_cast<std::uint16_t>(start));
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
