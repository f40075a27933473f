#include "check/row_check.h"

#include "check/row_parts.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "page/slotted_page.h"

namespace jet {

namespace {

constexpr std::uint16_t kPointer = 0x4000;
constexpr std::uint16_t kTarget = 0x8000;
constexpr std::uint16_t kDeleted = 0xC000;
constexpr std::uint16_t kNoFlag = 0x2000;
constexpr std::uint16_t kOffset = 0x1FFF;
constexpr std::uint32_t kMostSlotsOnPage = 255;
constexpr std::size_t kFreeAt = 2;
constexpr std::size_t kOwnerAt = 4;

bool IsDeleted(const CheckedSlot& slot) {
    return slot.flags == kDeleted;
}

Spot SlotSpot(const std::string& table, RowId row) {
    return {table, row.page.value, row.slot};
}

// Days of the years 100 to 9999, all that a date can be.
constexpr double kFirstDay = -657435;
constexpr double kLastDay = 2958466;

}  // namespace

std::vector<CheckedSlot> CheckDataPage(CheckContext& context, Bytes page, const Spot& spot,
                                       std::uint32_t owner, bool lenient) {
    const Format& format = context.format;
    const bool typeRight = ReadU8(page, 0) == 1;
    const bool ownerRight = ReadU32(page, kOwnerAt) == owner;
    if (!typeRight && !(lenient && ownerRight)) {
        throw Damage{"page-type", "The page is no data page."};
    }
    if (ReadU8(page, 1) != 1) {
        context.findings.Error(spot, "page-header", "The second byte of the page is wrong.");
    }
    if (!ownerRight && !lenient) {
        throw Damage{"page-owner", "The page names another owner."};
    }
    const std::uint32_t count = ReadU16(page, format.rowCountAt);
    const std::uint32_t directoryEnd = format.rowDirectoryAt + 2 * count;
    if (count > kMostSlotsOnPage || directoryEnd > format.pageSize) {
        throw Damage{"slot-directory", "The page claims " + std::to_string(count) + " rows."};
    }
    std::vector<CheckedSlot> slots;
    std::uint32_t end = format.pageSize;
    bool broken = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint16_t entry = ReadU16(page, format.rowDirectoryAt + 2 * i);
        const Spot at{spot.table, spot.page, static_cast<int>(i)};
        CheckedSlot slot{static_cast<std::uint16_t>(entry & kDeleted),
                         static_cast<std::uint32_t>(entry & kOffset), 0};
        if ((entry & kNoFlag) != 0) {
            context.findings.Error(at, "slot-flags", "The row has an unknown flag.");
        }
        const bool overlaps = slot.start > end;
        if (overlaps || slot.start < directoryEnd) {
            context.findings.Error(at, overlaps ? "slot-overlap" : "slot-bounds",
                                   overlaps ? "The row lies over the row before it; neither it "
                                              "nor the next one can be read."
                                            : "The row begins inside the directory; neither it "
                                              "nor the next one can be read.");
            broken = true;
            slots.push_back({kDeleted, end, 0});
            continue;
        }
        slot.length = end - slot.start;
        if (slot.length == 0 && !IsDeleted(slot)) {
            context.findings.Error(at, "slot-empty", "The row has no bytes.");
            slot.flags = kDeleted;
        }
        end = slot.start;
        // Where a row ends is known from the one before.
        slot.flags = broken ? kDeleted : slot.flags;
        broken = false;
        slots.push_back(slot);
    }
    if (ReadU16(page, kFreeAt) != end - directoryEnd) {
        context.findings.Error(spot, "free-space",
                               "The page claims " + std::to_string(ReadU16(page, kFreeAt)) +
                                   " free bytes and has " + std::to_string(end - directoryEnd) +
                                   ".");
    }
    return slots;
}

RowCheck::RowCheck(CheckContext& context, PageAccount& account, const TableLayout& table)
    : context_(context), table_(table), longValues_(context, account, table) {
    pages_ = account.ReadMap(table.ownedMap, "table " + table.name, table.name);
    std::erase_if(pages_, [&](std::uint32_t page) {
        return !account.Claim(page, "table " + table.name, table.name);
    });
    owned_.insert(pages_.begin(), pages_.end());
    for (const std::uint32_t page :
         account.ReadMap(table.freeMap, "room in table " + table.name, table.name)) {
        if (owned_.count(page) == 0) {
            context.findings.Error(
                {table.name, page, -1}, "free-map",
                "The page is listed as having room, but it is none of the table's.");
        }
    }
}

std::vector<CheckedRow> RowCheck::PageRows(std::uint32_t number) {
    std::vector<CheckedRow> rows;
    const Spot spot{table_.name, number, -1};
    try {
        const auto page = context_.pages.Read(number);
        const auto slots = CheckDataPage(context_, page, spot, table_.page, IsLenient(number));
        for (std::size_t i = 0; i < slots.size(); ++i) {
            const RowId id{PageNumber{number}, static_cast<std::uint8_t>(i)};
            if (IsDeleted(slots[i])) {
                continue;
            }
            if (slots[i].flags == kTarget) {
                targets_.insert(id);
                continue;
            }
            const Bytes row = Slice(Bytes(page), slots[i].start, slots[i].length);
            try {
                if (slots[i].flags == kPointer) {
                    rows.push_back(ReadRow(Follow(row), id));
                } else {
                    rows.push_back(ReadRow(row, id));
                }
            } catch (const Damage& damage) {
                context_.findings.Error(SlotSpot(table_.name, id), damage.code, damage.sentence);
                // The row is there all the same; its entries must not count as superfluous.
                rows.push_back({id, std::vector<Value>(table_.columns.size()),
                                std::vector<bool>(table_.columns.size(), false)});
            }
        }
    } catch (const Damage& damage) {
        context_.findings.Error(spot, damage.code, damage.sentence);
    }
    return rows;
}

std::vector<std::byte> RowCheck::Follow(Bytes pointerRow) {
    const char* const code = "overflow-pointer";
    if (pointerRow.size() < 4) {
        throw Damage{code, "The row is too short to be a pointer."};
    }
    const RowId target = RowId::FromPacked(ReadU32(pointerRow, 0));
    const std::string name =
        "row " + std::to_string(target.slot) + " of page " + std::to_string(target.page.value);
    if (owned_.count(target.page.value) == 0) {
        throw Damage{code, "The row has moved to " + name + ", which is not the table's."};
    }
    const auto page = context_.pages.Read(target.page.value);
    const std::uint32_t count = ClaimedSlotCount(page, context_.format);
    if (target.slot >= count || (PageOwner(page) != table_.page && !IsLenient(target.page.value))) {
        throw Damage{code, "The row has moved to " + name + ", which is not there."};
    }
    if (ReadSlotKind(page, context_.format, target.slot) != SlotKind::kTarget) {
        throw Damage{code, "The row has moved to " + name + ", which is no moved row."};
    }
    if (!reached_.insert(target).second) {
        throw Damage{"overflow-shared", "Another row has moved to " + name + " as well."};
    }
    const std::optional<Slot> slot = FindSlot(page, context_.format, target.slot);
    if (!slot) {
        throw Damage{code, "The row has moved to " + name + ", which has no bytes."};
    }
    const Bytes row = Slice(Bytes(page), slot->start, slot->length);
    return {row.begin(), row.end()};
}

CheckedRow RowCheck::ReadRow(Bytes bytes, RowId id) {
    const RowParts parts(bytes, context_.format, table_);
    const Spot spot = SlotSpot(table_.name, id);
    CheckedRow row{id, std::vector<Value>(table_.columns.size()),
                   std::vector<bool>(table_.columns.size(), true)};
    if (parts.HasSpareBits()) {
        context_.findings.Warning(spot, "row-spare-bits",
                                  "The null mask has bits beyond the row's columns.");
    }
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
        const Column& column = table_.columns[i];
        const bool set = parts.IsSet(column.number);
        try {
            if (column.type == ColumnType::kBoolean) {
                row.values[i] = Value(set);
            } else if (set) {
                row.values[i] = ReadValue(column, parts.ColumnBytes(column), spot);
            } else if (!column.fixed && !parts.IsEmpty(column)) {
                context_.findings.Error(spot, "row-null-value",
                                        "The column " + column.name + " is null and has bytes.");
            }
        } catch (const Damage& damage) {
            row.readable[i] = false;
            context_.findings.Error(spot, damage.code, damage.sentence);
        }
    }
    return row;
}

Value RowCheck::ReadValue(const Column& column, Bytes stored, const Spot& spot) {
    std::vector<std::byte> whole;
    if (IsLongValue(column.type)) {
        whole = longValues_.Read(column, stored, spot);
        stored = whole;
    }
    const std::uint32_t size = SizeOfType(column.type);
    if (size != 0 && stored.size() != size) {
        throw Damage{"value-size", "The column " + column.name + " has a value of " +
                                       std::to_string(stored.size()) + " bytes."};
    }
    if (!IsLongValue(column.type) && column.type == ColumnType::kText && stored.size() % 2 != 0 &&
        context_.format.version == Version::kJet4 &&
        (stored.size() < 2 || ReadU16(stored, 0) != 0xFEFF)) {
        throw Damage{"value-text", "The column " + column.name + " has half a character."};
    }
    Value value;
    try {
        value = DecodeValue(column, stored, context_.format.version);
    } catch (const Error&) {
        throw Damage{"value-text", "The value of the column " + column.name + " makes no sense."};
    }
    if (const Date* date = std::get_if<Date>(&value.Get());
        date != nullptr && !(date->days >= kFirstDay && date->days < kLastDay)) {
        context_.findings.Warning(
            spot, "value-date", "The column " + column.name + " has a date outside the calendar.");
    }
    return value;
}

std::vector<CheckedRow> RowCheck::Orphans() {
    std::vector<CheckedRow> rows;
    for (const RowId target : targets_) {
        if (reached_.count(target) != 0) {
            continue;
        }
        try {
            const auto page = context_.pages.Read(target.page.value);
            const auto slots = CheckDataPage(context_, page, SlotSpot(table_.name, target),
                                             table_.page, IsLenient(target.page.value));
            if (target.slot < slots.size()) {
                const CheckedSlot& slot = slots[target.slot];
                rows.push_back(ReadRow(Slice(Bytes(page), slot.start, slot.length), target));
            }
        } catch (const Damage& damage) {
            context_.findings.Error(SlotSpot(table_.name, target), damage.code, damage.sentence);
        }
    }
    return rows;
}

void RowCheck::AddPage(std::uint32_t page) {
    if (owned_.insert(page).second) {
        pages_.push_back(page);
    }
}

void RowCheck::Finish() {
    for (const RowId target : targets_) {
        if (reached_.count(target) == 0) {
            context_.findings.Warning(SlotSpot(table_.name, target), "overflow-orphan",
                                      "No row has moved here, but a moved row is here.");
        }
    }
    longValues_.Finish();
}

}  // namespace jet
