#include "check/catalog_check.h"

#include <algorithm>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::int32_t kTableObject = 1;
// Tables behind fields of several values are the program's own, whatever their names.
constexpr std::uint32_t kPartOfField = 0x000A0000;

// Every file has its four system tables in the definitions up to this page.
constexpr std::uint32_t kLastSystemTable = 5;
constexpr std::uint32_t kPageBits = 0xFFFFFF;
constexpr std::uint32_t kSystemFlags = 0x80000002;
constexpr std::uint16_t kNameChunk = 0x0080;
constexpr std::size_t kChunkHead = 6;
constexpr std::size_t kPropertyHead = 8;
constexpr std::uint8_t kRelationType = 2;

bool IsNameOfSystem(const std::string& name) {
    return name.rfind("MSys", 0) == 0 || name.rfind("USys", 0) == 0 || name.rfind('~', 0) == 0;
}

[[noreturn]] void Broken(const char* what) {
    throw Damage{"properties", std::string("The object's properties ") + what + "."};
}

void CheckNames(Bytes chunk) {
    std::size_t at = 0;
    while (at < chunk.size()) {
        at += 2U + ReadU16(chunk, at);
    }
    if (at != chunk.size()) {
        Broken("have a list of names that is cut off");
    }
}

void CheckProperties(Bytes chunk) {
    std::size_t at = ReadU32(chunk, 0);
    if (at < kChunkHead || at != kChunkHead + ReadU16(chunk, 4)) {
        Broken("have a wrong owner");
    }
    while (at < chunk.size()) {
        const std::size_t length = ReadU16(chunk, at);
        if (length < kPropertyHead || length != kPropertyHead + ReadU16(chunk, at + 6)) {
            Broken("have a value of a wrong length");
        }
        at += length;
    }
    if (at != chunk.size()) {
        Broken("have a value that is cut off");
    }
}

void CheckBlob(Bytes blob, Version version) {
    const char* const signature = version == Version::kJet3 ? "KKD" : "MR2";
    if (blob.size() < 4 || std::memcmp(blob.data(), signature, 4) != 0) {
        Broken("do not begin as they should");
    }
    for (Bytes rest = blob.subspan(4); !rest.empty();) {
        const std::size_t length = ReadU32(rest, 0);
        if (length < kChunkHead || length > rest.size()) {
            Broken("have a part of a wrong length");
        }
        const Bytes chunk = rest.subspan(kChunkHead, length - kChunkHead);
        if (ReadU16(rest, 4) == kNameChunk) {
            CheckNames(chunk);
        } else {
            CheckProperties(chunk);
        }
        rest = rest.subspan(length);
    }
}

}  // namespace

CatalogCheck::CatalogCheck(CheckContext& context, const TableLayout& objects)
    : context_(context),
      objects_(objects),
      id_(Find("Id")),
      name_(Find("Name")),
      type_(Find("Type")),
      flags_(Find("Flags")),
      properties_(Find("LvProp")) {}

std::size_t CatalogCheck::Find(const char* column) {
    const auto found =
        std::find_if(objects_.columns.begin(), objects_.columns.end(),
                     [&](const Column& candidate) { return candidate.name == column; });
    if (found == objects_.columns.end()) {
        readable_ = false;
        context_.findings.Error({objects_.name, objects_.page, -1}, "catalog-shape",
                                std::string("The catalog has no column ") + column + ".");
        return 0;
    }
    return static_cast<std::size_t>(found - objects_.columns.begin());
}

void CatalogCheck::AddRow(const CheckedRow& row) {
    const Spot spot{objects_.name, row.id.page.value, row.id.slot};
    const auto* type = std::get_if<std::int32_t>(&row.values[type_].Get());
    const auto* id = std::get_if<std::int32_t>(&row.values[id_].Get());
    const auto* name = std::get_if<std::u16string>(&row.values[name_].Get());
    if (type == nullptr || id == nullptr || name == nullptr) {
        context_.findings.Error(spot, "catalog-row",
                                "The object has no number, no kind or no name.");
        return;
    }
    const auto* flags = std::get_if<std::int32_t>(&row.values[flags_].Get());
    const auto* blob = std::get_if<Binary>(&row.values[properties_].Get());
    if (blob != nullptr && !blob->empty()) {
        CheckProperties(*blob, spot);
    }
    if (*type != kTableObject) {
        ++others_[*type];
        return;
    }
    ListedObject entry;
    entry.row = row.id;
    entry.name = NarrowName(*name);
    entry.page = static_cast<std::uint32_t>(*id) & kPageBits;
    entry.system = flags != nullptr && (static_cast<std::uint32_t>(*flags) & kSystemFlags) != 0;
    entry.properties = blob == nullptr ? Binary() : *blob;
    if (entry.page <= kLastSystemTable && !entry.system) {
        context_.findings.Error(spot, "catalog-flags",
                                "The system table " + entry.name + " passes for an ordinary one.");
    }
    entry.hidden = entry.system && !IsNameOfSystem(entry.name) &&
                   (static_cast<std::uint32_t>(*flags) & kPartOfField) == 0;
    if (entry.hidden) {
        context_.findings.Warning(spot, "catalog-flags",
                                  "The table " + entry.name + " passes for a system table.");
    }
    const auto [other, isNew] = names_.emplace(entry.page, entry.name);
    if (!isNew) {
        context_.findings.Error(spot, "catalog-double",
                                "The tables " + other->second + " and " + entry.name +
                                    " are said to have the same definition.");
        return;
    }
    const bool sameName = std::any_of(tables_.begin(), tables_.end(), [&](const auto& table) {
        return CompareText(WidenName(table.name), *name, context_.format.version) == 0;
    });
    if (sameName) {
        context_.findings.Error(spot, "catalog-double",
                                "There are two tables of the name " + entry.name + ".");
    }
    tables_.push_back(entry);
}

void CatalogCheck::CheckProperties(Bytes blob, const Spot& spot) {
    try {
        CheckBlob(blob, context_.format.version);
    } catch (const Damage& damage) {
        context_.findings.Error(spot, damage.code, damage.sentence);
    } catch (const Error&) {
        context_.findings.Error(spot, "properties", "The object's properties are cut off.");
    }
}

void CheckRelations(CheckContext& context, const std::vector<TableLayout>& tables) {
    for (const TableLayout& table : tables) {
        for (const LogicalIndexLayout& index : table.logicalIndexes) {
            if (index.type != kRelationType) {
                continue;
            }
            const bool found =
                std::any_of(tables.begin(), tables.end(), [&](const TableLayout& other) {
                    return other.page == index.partnerTable &&
                           std::any_of(other.logicalIndexes.begin(), other.logicalIndexes.end(),
                                       [&](const LogicalIndexLayout& partner) {
                                           return partner.number == index.partner &&
                                                  partner.type == kRelationType &&
                                                  partner.partnerTable == table.page &&
                                                  partner.partner == index.number &&
                                                  partner.role != index.role;
                                       });
                });
            if (!found) {
                context.findings.Error(
                    {table.name, table.page, -1}, "relation-partner",
                    "The other side of the relationship " + index.name + " does not answer it.");
            }
        }
    }
}

}  // namespace jet
