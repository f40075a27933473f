// A table's definition as the check reads it: everything that can be made out, with a finding for
// each contradiction. It is read here apart from table/definition, which stops at the first one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "check/account.h"
#include "values/column.h"

namespace jet {

struct RealIndexLayout {
    struct Part {
        std::uint16_t column = 0;
        bool ascending = true;
    };
    std::vector<Part> parts;
    RowId map;
    std::uint32_t root = 0;
    std::uint8_t flags = 0;
    std::string name;  // of the first logical index that uses it

    [[nodiscard]] bool IsUnique() const { return (flags & 0x01) != 0; }
    [[nodiscard]] bool IgnoresNulls() const { return (flags & 0x02) != 0; }
    [[nodiscard]] bool IsRequired() const { return (flags & 0x08) != 0; }
};

struct LogicalIndexLayout {
    std::uint32_t number = 0;
    std::uint32_t real = 0;
    std::uint8_t role = 0;
    std::uint32_t partner = 0;
    std::uint32_t partnerTable = 0;
    std::uint8_t type = 0;
    std::string name;
};

struct LongValueMapsLayout {
    std::uint16_t column = 0;
    RowId owned;
    RowId free;
};

struct TableLayout {
    std::string name;
    std::uint32_t page = 0;
    std::vector<std::uint32_t> chain;  // its pages, the first included
    std::uint32_t rowCount = 0;
    std::int32_t lastAutoNumber = 0;
    bool system = false;
    std::uint16_t columnCount = 0;  // highest number ever used, plus one
    std::uint16_t variableCount = 0;
    RowId ownedMap;
    RowId freeMap;
    std::vector<Column> columns;  // by number
    std::vector<RealIndexLayout> indexes;
    std::vector<LogicalIndexLayout> logicalIndexes;
    std::vector<LongValueMapsLayout> longValues;

    [[nodiscard]] const Column* FindColumn(std::uint16_t number) const;
};

// Nothing when the definition cannot be read at all.
std::optional<TableLayout> ReadTableLayout(CheckContext& context, std::uint32_t page,
                                           const std::string& name);

}  // namespace jet
