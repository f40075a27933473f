#include "record/other_bytes.h"

#include <algorithm>

#include "record/data_page.h"

namespace jet {

namespace {

MutableBytes ChangeToResize(Operation& operation, PageNumber page, std::uint32_t slot,
                            std::uint32_t length) {
    const Format& format = operation.FileFormat();
    const PageRef stored = operation.Pages().Page(page);
    const Slot old = ReadSlot(stored.Data(), format, slot);
    if (length == old.length) return operation.ChangePart(page, old.start, length);
    // All rows move when their page is closed up.
    if (length > old.length + PageRoom(stored.Data(), format)) return operation.Change(page);
    const std::uint32_t count = SlotCount(stored.Data(), format);
    const std::uint32_t lowest = SlotEnd(stored.Data(), format, count);
    const std::uint32_t newLowest = lowest + old.length - length;
    const std::uint32_t from = std::min(lowest, newLowest);
    if (from > old.start) return operation.Change(page);
    operation.ChangePart(page, from, old.start + old.length - from);
    return operation.ChangePart(page, 0, SlotEntryAt(format, count));
}

}  // namespace

void GiveOtherBytes(Operation& operation, RowId place, Bytes bytes) {
    const Format& format = operation.FileFormat();
    const auto size = static_cast<std::uint32_t>(bytes.size());
    const MutableBytes page = ChangeToResize(operation, place.page, place.slot, size);
    ResizeRow(page, format, place.slot, size);
    const Slot resized = ReadSlot(page, format, place.slot);
    std::copy(bytes.begin(), bytes.end(), page.begin() + resized.start);
}

}  // namespace jet
