#include "check/account.h"

#include <algorithm>

#include "page/bytes.h"
#include "page/map_row.h"
#include "page/slotted_page.h"

namespace jet {

namespace {

void ForEachBit(Bytes bits, std::uint64_t first, std::vector<std::uint32_t>& members) {
    for (std::size_t i = 0; i < bits.size(); ++i) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            if ((std::to_integer<unsigned>(bits[i]) >> bit & 1U) != 0) {
                members.push_back(static_cast<std::uint32_t>(
                    std::min<std::uint64_t>(first + i * 8 + bit, UINT32_MAX)));
            }
        }
    }
}

}  // namespace

PageAccount::PageAccount(CheckContext& context)
    : context_(context), users_(context.pages.PageCount(), 0) {}

bool PageAccount::Claim(std::uint32_t page, const std::string& user, const std::string& table) {
    if (page >= users_.size()) {
        return false;
    }
    if (users_[page] != 0) {
        context_.findings.Error({table, page, -1}, "page-twice",
                                "The page belongs to " + user + " and to " + UserOf(page) + ".");
        return false;
    }
    if (names_.back() != user) {
        names_.push_back(user);
    }
    users_[page] = static_cast<std::uint32_t>(names_.size() - 1);
    return true;
}

void PageAccount::ClaimShared(std::uint32_t page) {
    static const std::string kShared = "usage maps";
    if (!IsClaimed(page) || UserOf(page) != kShared) {
        Claim(page, kShared, {});
    }
}

bool PageAccount::IsClaimed(std::uint32_t page) const {
    return page < users_.size() && users_[page] != 0;
}

const std::string& PageAccount::UserOf(std::uint32_t page) const {
    return names_[page < users_.size() ? users_[page] : 0];
}

std::vector<std::byte> PageAccount::MapRow(RowId row, bool global) const {
    const std::string name =
        "row " + std::to_string(row.slot) + " of page " + std::to_string(row.page.value);
    if (!row || row.page.value >= context_.pages.PageCount()) {
        throw Damage{"map-pointer", "A usage map is said to be " + name + ", which is not there."};
    }
    const auto page = context_.pages.Read(row.page.value);
    const bool right = IsDataPage(page) && PageOwner(page) == (global ? 1U : 0U);
    if (!right || row.slot >= ClaimedSlotCount(page, context_.format)) {
        throw Damage{"map-pointer", "A usage map is said to be " + name + ", where none is."};
    }
    const SlotKind kind = ReadSlotKind(page, context_.format, row.slot);
    if (kind == SlotKind::kDeleted || kind == SlotKind::kTarget) {
        throw Damage{"map-pointer", "The usage map in " + name + " was deleted."};
    }
    const std::optional<Slot> slot = FindSlot(page, context_.format, row.slot);
    if (!slot || slot->length == 0) {
        throw Damage{"map-row", "The usage map in " + name + " has no bytes."};
    }
    const Bytes bytes = Slice(page, slot->start, slot->length);
    return {bytes.begin(), bytes.end()};
}

void PageAccount::ReadInline(Bytes row, std::vector<std::uint32_t>& members, const Spot& spot) {
    if (row.size() < kInlineMapHead) {
        throw Damage{"map-row", "A usage map is too short."};
    }
    const std::uint32_t start = ReadU32(row, 1);
    if (start % 8 != 0) {
        context_.findings.Warning(spot, "map-start",
                                  "A usage map begins with page " + std::to_string(start) +
                                      ", which is no multiple of 8.");
    }
    ForEachBit(row.subspan(kInlineMapHead), start, members);
}

void PageAccount::ReadReferences(Bytes row, const std::string& user,
                                 std::vector<std::uint32_t>& members, const Spot& spot,
                                 bool global) {
    const std::uint64_t range = PagesOfMapPage(context_.format);
    for (std::size_t i = 0; 1 + 4 * i + 4 <= row.size(); ++i) {
        const std::uint32_t page = ReadU32(row, 1 + 4 * i);
        // Ranges past the end of the file may name anything.
        if (page == 0 || range * i >= context_.pages.PageCount()) {
            continue;
        }
        const auto bytes = page < context_.pages.PageCount() ? context_.pages.Read(page)
                                                             : std::vector<std::byte>();
        if (bytes.empty() || !IsMapPage(bytes)) {
            context_.findings.Error(spot, "map-row",
                                    "The usage map names page " + std::to_string(page) +
                                        ", which is no page of a map.");
            continue;
        }
        Claim(page, "the map of " + user, spot.table);
        std::vector<std::uint32_t> found;
        ForEachBit(Bytes(bytes).subspan(kMapPageHead), range * i, found);
        if (global) {
            // All pages of a global map page past the end count as free.
            std::erase_if(found, [&](std::uint32_t n) { return n >= context_.pages.PageCount(); });
        }
        members.insert(members.end(), found.begin(), found.end());
    }
}

std::vector<std::uint32_t> PageAccount::ReadMap(RowId row, const std::string& user,
                                                const std::string& table) {
    const bool global = row.page.value == 1;
    const Spot spot{table, row.page.value, row.slot};
    std::vector<std::uint32_t> members;
    try {
        const auto bytes = MapRow(row, global);
        const auto [other, isNew] = maps_.emplace(row, user);
        if (!isNew) {
            context_.findings.Error(
                spot, "map-shared",
                "The usage map of " + user + " is also that of " + other->second + ".");
        }
        if (!global) {
            ClaimShared(row.page.value);
        }
        switch (ReadU8(bytes, 0)) {
            case kInlineMap:
                ReadInline(bytes, members, spot);
                break;
            case kReferenceMap:
                ReadReferences(bytes, user, members, spot, global);
                break;
            default:
                throw Damage{"map-row", "The usage map of " + user + " is of an unknown kind."};
        }
    } catch (const Damage& damage) {
        context_.findings.Error(spot, damage.code, damage.sentence);
    }
    const auto beyond = std::stable_partition(
        members.begin(), members.end(),
        [&](std::uint32_t page) { return page < context_.pages.PageCount(); });
    if (beyond != members.end() && !global) {
        context_.findings.Error(spot, "map-beyond-end",
                                "The usage map of " + user + " names page " +
                                    std::to_string(*beyond) + ", which is past the end.");
    }
    members.erase(beyond, members.end());
    return members;
}

std::vector<std::uint32_t> PageAccount::Unaccounted(RowId freeMap) {
    std::vector<bool> free(users_.size(), false);
    for (const std::uint32_t page : ReadMap(freeMap, "the free pages", {})) {
        free[page] = true;
    }
    std::vector<std::uint32_t> nobodys;
    for (std::uint32_t page = 0; page < users_.size(); ++page) {
        if (free[page] && IsClaimed(page)) {
            context_.findings.Error({{}, page, -1}, "page-used-free",
                                    "The page of " + UserOf(page) + " is marked as free.");
        } else if (!free[page] && !IsClaimed(page)) {
            nobodys.push_back(page);
        }
    }
    return nobodys;
}

}  // namespace jet
