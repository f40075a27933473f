#include "page/slotted_page.h"

namespace jet {

void ThrowNoSlot(Bytes page, const Format& format, std::uint32_t slot) {
    if (slot >= SlotCount(page, format)) ThrowDamaged("The file is damaged: a row is missing.");
    ThrowDamaged("The file is damaged: the rows of a page overlap.");
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
