// Index keys: from the values of a row to the bytes whose order is the order of the index.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "jet/schema.h"
#include "jet/value.h"
#include "values/key_bytes.h"

namespace jet {

// The collation of a text column, as its column block names it.
struct CollationId {
    std::uint16_t language = 0x0409;
    std::uint8_t version = 0;       // Jet 4
    std::uint16_t codePage = 1252;  // Jet 3
    bool operator==(const CollationId&) const = default;
};

struct KeyColumn {
    ColumnType type = ColumnType::kLong;
    bool ascending = true;
    CollationId collation;
};

// Why the engine cannot make keys for a column of this kind, or nothing when it can.
std::optional<std::string> KeyObstacle(const KeyColumn& column, Version version);

// Appends one column part, flag byte included. The value must be of the column's type (text of a
// Jet 3 column included: it is turned into the code page here). kUnsupported where KeyObstacle says
// so.
void AppendKeyPart(Key& key, const KeyColumn& column, const Value& value, Version version);

// Appends the beginning that the keys of a text, and of all texts that count as equal to it, have
// in common in every file, flag byte included. kUnsupported.
void AppendKeyStart(Key& key, const KeyColumn& column, std::u16string_view text, Version version);

// Orders two texts as the engine's General collation of this version does: negative, zero,
// positive.
int CompareText(std::u16string_view left, std::u16string_view right, Version version);

}  // namespace jet
