// A season as the tables of its data file: names, fields, records.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "season/season.h"

namespace review {

using PlainValue = std::variant<std::monostate, std::int32_t, float, std::string>;

enum class PlainType { kWhole, kDollars, kAcres, kText };

struct PlainField {
    std::string name;
    PlainType type = PlainType::kText;
};

struct PlainTable {
    std::string name;
    std::vector<PlainField> fields;
    std::vector<std::vector<PlainValue>> records;
};

// All seven tables with everything that the file holds, records in the order of their keys and
// resources in that of `Sequence`.
std::vector<PlainTable> PlainTables(const season::Season& season);

// An object with a member for each table, an array of objects.
std::string JsonOfTables(const std::vector<PlainTable>& tables);
// Comma-separated, with a heading; null is nothing, an empty text is "".
std::string CsvOf(const PlainTable& table);

}  // namespace review
