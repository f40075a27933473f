// A column, and its values to and from the bytes that a row holds for them.
//
// Type      Size  Stored as
// boolean   0     only the bit of the null mask
// byte      1     unsigned
// integer   2     signed
// long      4     signed
// currency  8     signed, ten-thousandths
// single    4     IEEE
// double    8     IEEE
// date      8     IEEE double, days since 1899-12-30
// binary    var   the bytes
// text      var   see text.h
// OLE, memo var   see long_value.h; the bytes, or text as in text.h
// GUID      16    as a Windows GUID lies in memory
// decimal   17    sign (80 is negative), four words of 32 bits, highest first
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jet/schema.h"
#include "jet/value.h"
#include "page/types.h"
#include "values/key.h"

namespace jet {

struct Column {
    std::string name;     // UTF-8
    std::u16string wide;  // the same as the format knows it
    ColumnType type = ColumnType::kLong;
    std::uint16_t number = 0;         // bit in the null mask; never used again after a deletion
    std::uint16_t variableIndex = 0;  // place in the row's table of variable values
    std::uint16_t ordinal = 0;
    std::uint16_t sortVersion = 0;  // Jet 3: as in the file's header
    CollationId collation;
    bool fixed = false;  // stored in the fixed area; decides, whatever the type
    bool autoNumber = false;
    bool autoGuid = false;
    bool systemColumn = false;
    bool securityId = false;
    bool compressed = false;
    std::uint16_t fixedOffset = 0;
    std::uint16_t length = 0;  // bytes
    std::uint8_t precision = 0;
    std::uint8_t scale = 0;
    // From the properties of the catalog.
    bool required = false;
    bool allowZeroLength = true;
    std::string defaultValue;
    std::string validationRule;
    std::string validationText;
};

// The most bytes of a memo or an OLE value.
inline constexpr std::uint32_t kLongestLongValue = (1U << 30) - 1;

inline bool IsLongValue(ColumnType type) {
    return type == ColumnType::kMemo || type == ColumnType::kOle;
}

// Size of a value of a type that has only one; 0 for the others.
std::uint32_t SizeOfType(ColumnType type);

// The value of a column's bytes; for a long value, of the whole value. kDamaged when the size is
// wrong for the type. Booleans have no bytes and are not decoded here.
Value DecodeValue(const Column& column, Bytes stored, Version version);

// The value as the column would hold it. Errors: kTypeMismatch, kOverflow, kTextTooLong.
Value ConvertForColumn(const Column& column, Value value, Version version);
// The same for a value to be looked for, which may be longer than any in the column.
Value ConvertForSearch(const Column& column, const Value& value);

// Appends the bytes of a converted value that is neither null nor boolean nor a long value.
void EncodeValue(const Column& column, const Value& value, Version version,
                 std::vector<std::byte>& into);

}  // namespace jet
