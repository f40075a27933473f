#include "record/data_page.h"

#include <algorithm>
#include <cstring>

#include "page/bytes.h"

namespace jet {

namespace {

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
        const std::uint16_t entry = ReadU16(page, SlotEntryAt(format, slot));
        const std::uint32_t start = entry & kSlotOffsetMask;
        if (start > oldEnd || start < lowest) {
            ThrowDamaged("The file is damaged: the rows of a page overlap.");
        }
        const std::uint32_t length = (entry & kSlotKindMask) == kSlotKindMask ? 0 : oldEnd - start;
        oldEnd = start;
        end -= length;
        std::memmove(page.data() + end, page.data() + start, length);
        WriteU16(page, SlotEntryAt(format, slot),
                 static_cast<std::uint16_t>((entry & ~kSlotOffsetMask) | end));
    }
    std::fill(page.begin() + lowest, page.begin() + end, std::byte{0});
    WriteRoom(page, format);
}

// Moves the first byte of `slot` and of all later ones by `distance` towards the page's start.
void MoveStarts(MutableBytes page, const Format& format, std::uint32_t slot,
                std::int32_t distance) {
    const std::uint32_t count = SlotCount(page, format);
    for (std::uint32_t i = slot; i < count; ++i) {
        const std::uint16_t entry = ReadU16(page, SlotEntryAt(format, i));
        const std::int32_t start = (entry & kSlotOffsetMask) - distance;
        WriteU16(
            page, SlotEntryAt(format, i),
            static_cast<std::uint16_t>((entry & ~kSlotOffsetMask) | (start & kSlotOffsetMask)));
    }
}

}  // namespace

std::uint32_t PossibleRoom(Bytes page, const Format& format) {
    const std::uint32_t count = SlotCount(page, format);
    std::uint32_t room = PageRoom(page, format);
    std::uint32_t end = format.pageSize;
    const Bytes directory = Slice(page, format.rowDirectoryAt, sizeof(std::uint16_t) * count);
    for (std::uint32_t slot = 0; slot < count; ++slot) {
        const std::uint16_t entry = ReadU16(directory, sizeof(std::uint16_t) * slot);
        const std::uint32_t start = entry & kSlotOffsetMask;
        if ((entry & kSlotKindMask) == kSlotKindMask) {
            if (start > end) ThrowDamaged("The file is damaged: the rows of a page overlap.");
            room += end - start;
        }
        end = start;
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
        if ((ReadU16(page, SlotEntryAt(format, slot)) & kSlotKindMask) != kSlotKindMask)
            return true;
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
    WriteU16(page, SlotEntryAt(format, count),
             static_cast<std::uint16_t>(start | static_cast<std::uint16_t>(kind)));
    WriteU16(page, format.rowCountAt, static_cast<std::uint16_t>(count + 1));
    WriteRoom(page, format);
    return static_cast<std::uint8_t>(count);
}

MutableBytes ChangeToAppend(Operation& operation, PageNumber page, std::uint32_t length) {
    const Format& format = operation.FileFormat();
    const PageRef stored = operation.Pages().Page(page);
    const std::uint32_t count = SlotCount(stored.Data(), format);
    // The rows move when their page is closed up.
    if (PageRoom(stored.Data(), format) < length + 2) return operation.Change(page);
    operation.ChangePart(page, SlotEnd(stored.Data(), format, count) - length, length);
    return operation.ChangePart(page, 0, SlotEntryAt(format, count + 1));
}

MutableBytes ChangeToDelete(Operation& operation, PageNumber page, std::uint32_t slot) {
    return operation.ChangePart(page, SlotEntryAt(operation.FileFormat(), slot), 2);
}

void DeleteRow(MutableBytes page, const Format& format, std::uint32_t slot) {
    SetSlotKind(page, format, slot, SlotKind::kDeleted);
}

void ResizeRow(MutableBytes page, const Format& format, std::uint32_t slot, std::uint32_t length) {
    const std::uint32_t before = ReadSlot(page, format, slot).length;
    if (length == before) return;
    if (length > before + PageRoom(page, format)) CloseUp(page, format);
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
    const std::uint16_t entry = ReadU16(page, SlotEntryAt(format, slot));
    WriteU16(
        page, SlotEntryAt(format, slot),
        static_cast<std::uint16_t>((entry & kSlotOffsetMask) | static_cast<std::uint16_t>(kind)));
}

}  // namespace jet
