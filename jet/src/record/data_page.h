// A data page: rows packed downward from the page's end, and their directory behind the header.
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
//
// A deleted slot keeps its bytes until the page needs their room: taking them away moves every row
// below, all of which would go into the log, and most pages that lose rows get no new ones.
#pragma once

#include <cstdint>

#include "page/bytes.h"
#include "page/format.h"
#include "page/types.h"

namespace jet {

inline constexpr std::uint32_t kMostSlots = 255;
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
// The fewest bytes of a row: it must be able to become a pointer.
inline constexpr std::uint32_t kSmallestRow = 4;

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
// kDamaged when the number is more than a page can have.
inline std::uint32_t SlotCount(Bytes page, const Format& format) {
    const std::uint32_t count = ReadU16(page, format.rowCountAt);
    if (count > kMostSlots + 1) ThrowDamaged("The file is damaged: a page has too many rows.");
    return count;
}
// What the directory says of a slot, without a look at where its bytes lie.
inline SlotKind ReadSlotKind(Bytes page, const Format& format, std::uint32_t slot) {
    return static_cast<SlotKind>(ReadU16(page, format.rowDirectoryAt + 2 * slot) & 0xC000);
}
// kDamaged when the slot's bytes lie outside the page.
Slot ReadSlot(Bytes page, const Format& format, std::uint32_t slot);
Bytes SlotBytes(Bytes page, const Format& format, std::uint32_t slot);
// Free bytes, from the directory; kDamaged when rows and directory overlap.
std::uint32_t PageRoom(Bytes page, const Format& format);
// The same together with the bytes of deleted slots.
std::uint32_t PossibleRoom(Bytes page, const Format& format);
// True when a new row of `length` bytes fits, if need be in the room of deleted ones.
bool HasRoomFor(Bytes page, const Format& format, std::uint32_t length);
// True when the slot can become `length` bytes long, likewise.
bool CanResize(Bytes page, const Format& format, std::uint32_t slot, std::uint32_t length);
bool HasLiveSlots(Bytes page, const Format& format);

// Makes a zeroed page an empty data page.
void StartDataPage(MutableBytes page, const Format& format, std::uint32_t owner);
// Adds a slot; the caller has made sure of the room.
std::uint8_t AppendRow(MutableBytes page, const Format& format, Bytes row, SlotKind kind);
// Marks the slot as deleted; the page takes its bytes back when it needs them.
void DeleteRow(MutableBytes page, const Format& format, std::uint32_t slot);
// Makes the slot `length` bytes long, moving the rows behind it; its old bytes stay as far as they
// go. The caller has made sure of the room.
void ResizeRow(MutableBytes page, const Format& format, std::uint32_t slot, std::uint32_t length);
void SetSlotKind(MutableBytes page, const Format& format, std::uint32_t slot, SlotKind kind);

}  // namespace jet
