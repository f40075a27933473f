// Rows on their data pages (slotted_page.h): adding, resizing and deleting them.
//
// A deleted slot keeps its bytes until the page needs their room: taking them away moves every row
// below, all of which would go into the log, and most pages that lose rows get no new ones.
#pragma once

#include <cstdint>

#include "page/format.h"
#include "page/operation.h"
#include "page/slotted_page.h"
#include "page/types.h"

namespace jet {

inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
// The fewest bytes of a row: it must be able to become a pointer.
inline constexpr std::uint32_t kSmallestRow = 4;

// The free bytes together with those of deleted slots. kDamaged.
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
// Opens the page for AppendRow.
MutableBytes ChangeToAppend(Operation& operation, PageNumber page, std::uint32_t length);
// Opens the page for DeleteRow of a slot that it has.
MutableBytes ChangeToDelete(Operation& operation, PageNumber page, std::uint32_t slot);
// Marks the slot as deleted; the page takes its bytes back when it needs them.
void DeleteRow(MutableBytes page, const Format& format, std::uint32_t slot);
// Makes the slot `length` bytes long, moving the rows behind it; its old bytes stay as far as they
// go. The caller has made sure of the room.
void ResizeRow(MutableBytes page, const Format& format, std::uint32_t slot, std::uint32_t length);
void SetSlotKind(MutableBytes page, const Format& format, std::uint32_t slot, SlotKind kind);

}  // namespace jet
