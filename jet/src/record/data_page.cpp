#include "record/data_page.h"

#include <algorithm>
#include <cstring>

#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::uint16_t kOffsetMask = 0x1FFF;
constexpr std::uint16_t kKindMask = 0xC000;

std::uint32_t EntryAt(const Format& format, std::uint32_t slot) {
    return format.rowDirectoryAt + 2 * slot;
}

std::uint32_t SlotStart(Bytes page, const Format& format, std::uint32_t slot) {
    return ReadU16(page, EntryAt(format, slot)) & kOffsetMask;
}

// Where the row before slot `slot` begins, which is where the row of `slot` ends.
std::uint32_t SlotEnd(Bytes page, const Format& format, std::uint32_t slot) {
    return slot == 0 ? format.pageSize : SlotStart(page, format, slot - 1);
}

void WriteRoom(MutableBytes page, const Format& format) {
    WriteU16(page, 2, static_cast<std::uint16_t>(PageRoom(page, format)));
}

// Takes the bytes of deleted slots away, so that all free bytes lie together.
void CloseUp(MutableBytes page, const Format& format) {
    const std::uint32_t count = SlotCount(page, format);
    const std::uint32_t lowest = SlotEnd(page, format, count);
    std::uint32_t oldEnd = format.pageSize;
    std::uint32_t end = format.pageSize;
    for (std::uint32_t slot = 0; slot < count; ++slot) {
        const std::uint16_t entry = ReadU16(page, EntryAt(format, slot));
        const std::uint32_t start = entry & kOffsetMask;
        if (start > oldEnd || start < lowest) {
            ThrowDamaged("The file is damaged: the rows of a page overlap.");
        }
        const std::uint32_t length = (entry & kKindMask) == kKindMask ? 0 : oldEnd - start;
        oldEnd = start;
        end -= length;
        std::memmove(page.data() + end, page.data() + start, length);
        WriteU16(page, EntryAt(format, slot),
                 static_cast<std::uint16_t>((entry & ~kOffsetMask) | end));
    }
    std::fill(page.begin() + lowest, page.begin() + end, std::byte{0});
    WriteRoom(page, format);
}

// Moves the first byte of `slot` and of all later ones by `distance` towards the page's start.
void MoveStarts(MutableBytes page, const Format& format, std::uint32_t slot,
                std::int32_t distance) {
    const std::uint32_t count = SlotCount(page, format);
    for (std::uint32_t i = slot; i < count; ++i) {
        const std::uint16_t entry = ReadU16(page, EntryAt(format, i));
        const std::int32_t start = (entry & kOffsetMask) - distance;
        WriteU16(page, EntryAt(format, i),
                 static_cast<std::uint16_t>((entry & ~kOffsetMask) | (start & kOffsetMask)));
    }
}

}  // namespace

Slot ReadSlot(Bytes page, const Format& format, std::uint32_t slot) {
    const std::uint32_t count = SlotCount(page, format);
    if (slot >= count) ThrowDamaged("The file is damaged: a row is missing.");
    const std::uint16_t entry = ReadU16(page, EntryAt(format, slot));
    const std::uint32_t start = entry & kOffsetMask;
    const std::uint32_t end = SlotEnd(page, format, slot);
    if (start > end || end > format.pageSize || start < EntryAt(format, count)) {
        ThrowDamaged("The file is damaged: the rows of a page overlap.");
    }
    return {
        .kind = static_cast<SlotKind>(entry & kKindMask), .start = start, .length = end - start};
}

Bytes SlotBytes(Bytes page, const Format& format, std::uint32_t slot) {
    const Slot found = ReadSlot(page, format, slot);
    return Slice(page, found.start, found.length);
}

std::uint32_t PageRoom(Bytes page, const Format& format) {
    const std::uint32_t count = SlotCount(page, format);
    const std::uint32_t used = EntryAt(format, count);
    const std::uint32_t lowest = SlotEnd(page, format, count);
    if (lowest < used || lowest > format.pageSize) {
        ThrowDamaged("The file is damaged: the rows of a page overlap.");
    }
    return lowest - used;
}

std::uint32_t PossibleRoom(Bytes page, const Format& format) {
    const std::uint32_t count = SlotCount(page, format);
    std::uint32_t room = PageRoom(page, format);
    for (std::uint32_t slot = 0; slot < count; ++slot) {
        if (ReadSlotKind(page, format, slot) == SlotKind::kDeleted) {
            room += ReadSlot(page, format, slot).length;
        }
    }
    return room;
}

bool HasRoomFor(Bytes page, const Format& format, std::uint32_t length) {
    return SlotCount(page, format) < kMostSlots &&
           (PageRoom(page, format) >= length + 2 || PossibleRoom(page, format) >= length + 2);
}

bool CanResize(Bytes page, const Format& format, std::uint32_t slot, std::uint32_t length) {
    const std::uint32_t old = ReadSlot(page, format, slot).length;
    return length <= old + PageRoom(page, format) || length <= old + PossibleRoom(page, format);
}

bool HasLiveSlots(Bytes page, const Format& format) {
    const std::uint32_t count = SlotCount(page, format);
    for (std::uint32_t slot = 0; slot < count; ++slot) {
        if ((ReadU16(page, EntryAt(format, slot)) & kKindMask) != kKindMask) return true;
    }
    return false;
}

void StartDataPage(MutableBytes page, const Format& format, std::uint32_t owner) {
    WriteU16(page, 0, kDataPageType);
    WriteU32(page, 4, owner);
    WriteRoom(page, format);
}

std::uint8_t AppendRow(MutableBytes page, const Format& format, Bytes row, SlotKind kind) {
    const std::uint32_t count = SlotCount(page, format);
    if (!HasRoomFor(page, format, static_cast<std::uint32_t>(row.size()))) ThrowOutOfBounds();
    if (PageRoom(page, format) < row.size() + 2) CloseUp(page, format);
    const auto start = static_cast<std::uint32_t>(SlotEnd(page, format, count) - row.size());
    if (!row.empty()) std::memcpy(Slice(page, start, row.size()).data(), row.data(), row.size());
    WriteU16(page, EntryAt(format, count),
             static_cast<std::uint16_t>(start | static_cast<std::uint16_t>(kind)));
    WriteU16(page, format.rowCountAt, static_cast<std::uint16_t>(count + 1));
    WriteRoom(page, format);
    return static_cast<std::uint8_t>(count);
}

void DeleteRow(MutableBytes page, const Format& format, std::uint32_t slot) {
    SetSlotKind(page, format, slot, SlotKind::kDeleted);
}

void ResizeRow(MutableBytes page, const Format& format, std::uint32_t slot, std::uint32_t length) {
    if (length > ReadSlot(page, format, slot).length + PageRoom(page, format)) {
        CloseUp(page, format);
    }
    const Slot old = ReadSlot(page, format, slot);
    const std::uint32_t room = PageRoom(page, format);
    const std::uint32_t lowest = SlotEnd(page, format, SlotCount(page, format));
    if (length > old.length + room || lowest > old.start) ThrowOutOfBounds();
    const std::uint32_t kept = std::min(length, old.length);
    const std::uint32_t newLowest = lowest + old.length - length;
    const std::uint32_t moved = old.start + kept - lowest;
    std::memmove(page.data() + newLowest, page.data() + lowest, moved);
    std::fill(page.begin() + newLowest + moved, page.begin() + old.start + old.length,
              std::byte{0});
    if (newLowest > lowest) {
        std::fill(page.begin() + lowest, page.begin() + newLowest, std::byte{0});
    }
    MoveStarts(page, format, slot,
               static_cast<std::int32_t>(length) - static_cast<std::int32_t>(old.length));
    WriteRoom(page, format);
}

void SetSlotKind(MutableBytes page, const Format& format, std::uint32_t slot, SlotKind kind) {
    const std::uint16_t entry = ReadU16(page, EntryAt(format, slot));
    WriteU16(page, EntryAt(format, slot),
             static_cast<std::uint16_t>((entry & kOffsetMask) | static_cast<std::uint16_t>(kind)));
}

}  // namespace jet
