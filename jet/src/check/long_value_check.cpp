#include <string>

#include "check/row_check.h"
#include "page/bytes.h"
#include "record/data_page.h"
#include "record/long_value.h"

namespace jet {

namespace {

constexpr std::uint32_t kLengthBits = 0x3FFFFFFF;
constexpr unsigned kFormShift = 30;

}  // namespace

LongValueCheck::LongValueCheck(CheckContext& context, PageAccount& account,
                               const TableLayout& table)
    : context_(context), table_(table) {
    for (const LongValueMapsLayout& maps : table.longValues) {
        const Column* column = table.FindColumn(maps.column);
        const std::string user =
            "long values of " + table.name + "." + (column == nullptr ? "?" : column->name);
        std::set<std::uint32_t>& pages = pages_[maps.column];
        for (const std::uint32_t page : account.ReadMap(maps.owned, user, table.name)) {
            if (account.Claim(page, user, table.name)) {
                pages.insert(page);
            }
        }
        if (!maps.free) {
            continue;  // some writers leave this map out
        }
        for (const std::uint32_t page :
             account.ReadMap(maps.free, "room for " + user, table.name)) {
            if (pages.count(page) == 0) {
                context.findings.Error({table.name, page, -1}, "free-map",
                                       "The page is listed as having room for " + user +
                                           ", but it is none of theirs.");
            }
        }
    }
}

std::vector<std::byte> LongValueCheck::Read(const Column& column, Bytes inRow, const Spot& spot) {
    if (inRow.empty()) {
        return {};
    }
    if (inRow.size() < kLongValueHeader) {
        throw Damage{"long-value-header",
                     "The long value in " + column.name + " is cut off in the row."};
    }
    const std::uint32_t head = ReadU32(inRow, 0);
    const std::size_t length = head & kLengthBits;
    const RowId first = RowId::FromPacked(ReadU32(inRow, 4));
    std::vector<std::byte> value;
    switch (head >> kFormShift) {
        case static_cast<unsigned>(LongValueForm::kInline): {
            const Bytes rest = inRow.subspan(kLongValueHeader);
            value.assign(rest.begin(), rest.end());
            break;
        }
        case static_cast<unsigned>(LongValueForm::kRow):
            value = Piece(column, first, spot);
            break;
        case static_cast<unsigned>(LongValueForm::kChain):
            value = Chain(column, first, length, spot);
            break;
        default:
            throw Damage{"long-value-header",
                         "The long value in " + column.name + " is of an unknown form."};
    }
    if (value.size() != length) {
        throw Damage{"long-value-length", "The long value in " + column.name + " claims " +
                                              std::to_string(length) + " bytes and has " +
                                              std::to_string(value.size()) + "."};
    }
    return value;
}

std::vector<std::byte> LongValueCheck::Piece(const Column& column, RowId row, const Spot& spot) {
    const std::string name =
        "row " + std::to_string(row.slot) + " of page " + std::to_string(row.page.value);
    const char* const code = "long-value-pointer";
    const std::string sentence = "The long value in " + column.name + " is said to be in " + name;
    if (!row || row.page.value >= context_.pages.PageCount()) {
        throw Damage{code, sentence + ", which is past the end."};
    }
    const auto page = context_.pages.Read(row.page.value);
    if (!IsDataPage(page) || PageOwner(page) != kLongValueOwner ||
        row.slot >= ClaimedSlotCount(page, context_.format)) {
        throw Damage{code, sentence + ", where none is."};
    }
    const std::optional<Slot> slot = FindSlot(page, context_.format, row.slot);
    if (!slot || slot->kind != SlotKind::kRow) {
        throw Damage{code, sentence + ", which was deleted."};
    }
    if (pages_[column.number].count(row.page.value) == 0) {
        context_.findings.Error(
            spot, "long-value-map",
            "The page of " + name + " is missing in the map of " + column.name + ".");
    }
    if (!used_.insert(row).second) {
        throw Damage{"long-value-shared", sentence + ", which is in use already."};
    }
    const Bytes bytes = Slice(Bytes(page), slot->start, slot->length);
    return {bytes.begin(), bytes.end()};
}

std::vector<std::byte> LongValueCheck::Chain(const Column& column, RowId first, std::size_t length,
                                             const Spot& spot) {
    std::vector<std::byte> value;
    std::set<RowId> seen;
    for (RowId next = first; next;) {
        if (!seen.insert(next).second) {
            throw Damage{"long-value-loop",
                         "The pieces of the long value in " + column.name + " run in a circle."};
        }
        const auto piece = Piece(column, next, spot);
        if (piece.size() < 4) {
            throw Damage{"long-value-chain",
                         "A piece of the long value in " + column.name + " is too short."};
        }
        next = RowId::FromPacked(ReadU32(piece, 0));
        value.insert(value.end(), piece.begin() + 4, piece.end());
        if (value.size() > length && next) {
            throw Damage{"long-value-length", "The long value in " + column.name +
                                                  " is longer than the " + std::to_string(length) +
                                                  " bytes it claims."};
        }
    }
    return value;
}

void LongValueCheck::Finish() {
    for (const auto& [column, pages] : pages_) {
        for (const std::uint32_t number : pages) {
            const Spot spot{table_.name, number, -1};
            try {
                const auto page = context_.pages.Read(number);
                const auto slots = CheckDataPage(context_, page, spot, kLongValueOwner);
                for (std::size_t i = 0; i < slots.size(); ++i) {
                    const RowId row{PageNumber{number}, static_cast<std::uint8_t>(i)};
                    if (slots[i].flags == 0 && used_.count(row) == 0) {
                        context_.findings.Warning({table_.name, number, static_cast<int>(i)},
                                                  "long-value-orphan",
                                                  "No row uses this piece of a long value.");
                    }
                }
            } catch (const Damage& damage) {
                context_.findings.Error(spot, damage.code, damage.sentence);
            }
        }
    }
}

}  // namespace jet
