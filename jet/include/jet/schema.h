// Tables, columns and indexes as plain values: what a table is made from, and what an existing one
// is described by. Names are UTF-8 and are compared without regard to case.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace jet {

enum class Version { kJet3, kJet4 };

enum class ColumnType : std::uint8_t {
    kBoolean = 0x01,
    kByte = 0x02,
    kInteger = 0x03,  // 16 bits
    kLong = 0x04,     // 32 bits
    kCurrency = 0x05,
    kSingle = 0x06,
    kDouble = 0x07,
    kDate = 0x08,
    kBinary = 0x09,
    kText = 0x0A,
    kOle = 0x0B,
    kMemo = 0x0C,
    kGuid = 0x0F,
    kDecimal = 0x10,  // Jet 4 only
    kFixedBinary = 0x11,
};

struct ColumnSchema {
    std::string name = {};
    ColumnType type = ColumnType::kLong;
    int length = 0;               // characters for text, bytes for binary; ignored for other types
    bool autoNumber = false;      // kLong only
    bool fixedLength = false;     // text and binary: stored padded in the fixed area
    bool compressed = true;       // text, Jet 4: Unicode compression
    int precision = 18;           // kDecimal
    int scale = 0;                // kDecimal
    bool required = false;        // property "Required"
    bool allowZeroLength = true;  // property "AllowZeroLength", text and memo
    std::string defaultValue = {};  // property "DefaultValue", an expression; empty for none
    // Properties "ValidationRule", a condition that every value has to meet, and "ValidationText",
    // what a person is shown when one does not.
    std::string validationRule = {};
    std::string validationText = {};
};

struct IndexColumn {
    std::string name = {};
    bool ascending = true;
};

struct IndexSchema {
    std::string name = {};
    std::vector<IndexColumn> columns = {};
    bool primary = false;  // implies unique and required
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
    bool relation = false;  // one side of a relationship; read only, never created here
};

struct TableSchema {
    std::string name = {};
    std::vector<ColumnSchema> columns = {};  // in column-number order
    std::vector<IndexSchema> indexes = {};   // in creation order
    std::string validationRule = {};         // of every record
    std::string validationText = {};
};

}  // namespace jet
