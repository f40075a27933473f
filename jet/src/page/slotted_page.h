// Reading a slotted page: rows packed downward from the page's end, and their directory behind the
// header. Rows of tables, long values and usage maps lie on such pages; who writes them differs.
//
//   +---------------------------------------------------------------+
//   | header | directory: u16 for each slot ... | free | rows ...    |
//   +---------------------------------------------------------------+
//
// Jet 3  Jet 4  Size  Meaning
// 0      0      2     01 01
// 2      2      2     free bytes between directory and rows
// 4      4      4     owner: page of the table's definition; 0: usage maps; "LVAL": long values
// -      8      4     stamp on pages of long values, else 0
// 8      12     2     number of slots, deleted ones included
// 10     14     2 x   directory: flags and offset (13 bits) of the slot's first byte
//
// The row of a slot ends where that of the slot before it begins, so there are no gaps. A slot
// keeps its number as long as the page lives.
#pragma once

#include <cstdint>
#include <optional>

#include "page/bytes.h"
#include "page/format.h"
#include "page/types.h"

namespace jet {

inline constexpr std::uint32_t kMostSlots = 255;
inline constexpr std::uint16_t kSlotOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kSlotKindMask = 0xC000;

enum class SlotKind : std::uint16_t {
    kRow = 0x0000,
    kPointer = 0x4000,  // its first four bytes name the slot where the row is
    kTarget = 0x8000,   // the row of a pointer slot; a scan passes it over
    kDeleted = 0xC000,
};

struct Slot {
    SlotKind kind = SlotKind::kDeleted;
    std::uint32_t start = 0;
    std::uint32_t length = 0;
};

inline bool IsDataPage(Bytes page) {
    return ReadU16(page, 0) == kDataPageType;
}
inline std::uint32_t PageOwner(Bytes page) {
    return ReadU32(page, 4);
}
// What the page says, which may be more than it can have.
inline std::uint32_t ClaimedSlotCount(Bytes page, const Format& format) {
    return ReadU16(page, format.rowCountAt);
}
// kDamaged when the number is more than a page can have.
inline std::uint32_t SlotCount(Bytes page, const Format& format) {
    const std::uint32_t count = ClaimedSlotCount(page, format);
    if (count > kMostSlots + 1) ThrowDamaged("The file is damaged: a page has too many rows.");
    return count;
}
// Where the directory has the entry of a slot.
inline std::uint32_t SlotEntryAt(const Format& format, std::uint32_t slot) {
    return format.rowDirectoryAt + 2 * slot;
}
// What the directory says of a slot, without a look at where its bytes lie.
inline SlotKind ReadSlotKind(Bytes page, const Format& format, std::uint32_t slot) {
    return static_cast<SlotKind>(ReadU16(page, SlotEntryAt(format, slot)) & kSlotKindMask);
}
// The first byte of a slot, and where the one before it begins, which is where it ends.
inline std::uint32_t SlotStart(Bytes page, const Format& format, std::uint32_t slot) {
    return ReadU16(page, SlotEntryAt(format, slot)) & kSlotOffsetMask;
}
inline std::uint32_t SlotEnd(Bytes page, const Format& format, std::uint32_t slot) {
    return slot == 0 ? format.pageSize : SlotStart(page, format, slot - 1);
}
// Nothing when there is no such slot, or its bytes lie outside the page.
inline std::optional<Slot> FindSlot(Bytes page, const Format& format, std::uint32_t slot) {
    const std::uint32_t count = ClaimedSlotCount(page, format);
    if (count > kMostSlots + 1 || slot >= count) return std::nullopt;
    const std::uint32_t start = SlotStart(page, format, slot);
    const std::uint32_t end = SlotEnd(page, format, slot);
    if (start > end || end > format.pageSize || start < SlotEntryAt(format, count)) {
        return std::nullopt;
    }
    return Slot{.kind = ReadSlotKind(page, format, slot), .start = start, .length = end - start};
}
[[noreturn]] void ThrowNoSlot(Bytes page, const Format& format, std::uint32_t slot);
// kDamaged in either case.
inline Slot ReadSlot(Bytes page, const Format& format, std::uint32_t slot) {
    const std::optional<Slot> found = FindSlot(page, format, slot);
    if (!found) ThrowNoSlot(page, format, slot);
    return *found;
}
Bytes SlotBytes(Bytes page, const Format& format, std::uint32_t slot);
// Free bytes, from the directory; kDamaged when rows and directory overlap.
std::uint32_t PageRoom(Bytes page, const Format& format);

}  // namespace jet
