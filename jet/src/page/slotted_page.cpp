#include "page/slotted_page.h"

namespace jet {

namespace {

std::optional<Slot> SlotAmong(Bytes page, const Format& format, std::uint32_t count,
                              std::uint32_t slot) {
    const std::uint16_t entry = ReadU16(page, SlotEntryAt(format, slot));
    const std::uint32_t start = entry & kSlotOffsetMask;
    const std::uint32_t end = SlotEnd(page, format, slot);
    if (start > end || end > format.pageSize || start < SlotEntryAt(format, count)) {
        return std::nullopt;
    }
    return Slot{.kind = static_cast<SlotKind>(entry & kSlotKindMask),
                .start = start,
                .length = end - start};
}

}  // namespace

std::optional<Slot> FindSlot(Bytes page, const Format& format, std::uint32_t slot) {
    const std::uint32_t count = ClaimedSlotCount(page, format);
    if (count > kMostSlots + 1 || slot >= count) return std::nullopt;
    return SlotAmong(page, format, count, slot);
}

Slot ReadSlot(Bytes page, const Format& format, std::uint32_t slot) {
    const std::uint32_t count = SlotCount(page, format);
    if (slot >= count) ThrowDamaged("The file is damaged: a row is missing.");
    const std::optional<Slot> found = SlotAmong(page, format, count, slot);
    if (!found) ThrowDamaged("The file is damaged: the rows of a page overlap.");
    return *found;
}

Bytes SlotBytes(Bytes page, const Format& format, std::uint32_t slot) {
    const Slot found = ReadSlot(page, format, slot);
    return Slice(page, found.start, found.length);
}

std::uint32_t PageRoom(Bytes page, const Format& format) {
    const std::uint32_t count = SlotCount(page, format);
    const std::uint32_t used = SlotEntryAt(format, count);
    const std::uint32_t lowest = SlotEnd(page, format, count);
    if (lowest < used || lowest > format.pageSize) {
        ThrowDamaged("The file is damaged: the rows of a page overlap.");
    }
    return lowest - used;
}

}  // namespace jet
