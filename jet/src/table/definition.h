// A table's definition: its columns, indexes and maps.
//
// The definition is one string of bytes. The first page holds its beginning, header included; each
// further page of the chain holds more behind a header of 8 bytes of its own.
//
//   +--------+------------+---------+-------+--------------+-----------------+-------+------+
//   | header | statistics | columns | names | real indexes | logical indexes | names | maps |
//   +--------+------------+---------+-------+--------------+-----------------+-------+------+
//
// Jet 3  Jet 4  Size  Header
// 0      0      2     02 01
// 2      2      2     "VC" / free bytes of this page, less 8
// 4      4      4     next page of the chain, 0 for none
// 8      8      4     length of the string
// -      12     4     1625
// 12     16     4     rows
// 16     20     4     last auto-number given out
// -      24     4     1
// 20     40     1     'N' table of a user, 'S' table of the system
// 21     41     2     highest column number ever used, plus one
// 23     43     2     variable columns ever used
// 25     45     2     columns
// 27     47     4     logical indexes
// 31     51     4     real indexes
// 35     55     4     map of the data pages
// 39     59     4     map of the data pages with room
//
// The blocks of the parts are described in definition.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "page/operation.h"
#include "page/pager.h"
#include "record/row.h"
#include "values/column.h"
#include "values/key.h"

namespace jet {

inline constexpr std::uint8_t kUniqueIndex = 0x01;
inline constexpr std::uint8_t kIgnoreNullsIndex = 0x02;
inline constexpr std::uint8_t kRequiredIndex = 0x08;

struct RealIndex {
    struct Part {
        std::size_t column = 0;  // position in Definition::columns
        bool ascending = true;
    };
    std::vector<Part> parts;
    RowId map;
    PageNumber root;
    std::uint8_t flags = 0;
    bool unknownPart = false;  // a column or an order that the definition does not explain
    std::uint32_t builtEntries = 0;
    std::uint32_t distinctKeys = 0;
    [[nodiscard]] bool Unique() const { return (flags & kUniqueIndex) != 0; }
    [[nodiscard]] bool IgnoresNulls() const { return (flags & kIgnoreNullsIndex) != 0; }
    [[nodiscard]] bool Required() const { return (flags & kRequiredIndex) != 0; }
};

enum class IndexRole : std::uint8_t { kOrdinary = 0, kPrimary = 1, kRelation = 2 };

struct LogicalIndex {
    std::string name;
    std::u16string wide;
    std::uint32_t number = 0;
    std::uint32_t real = 0;  // position in Definition::realIndexes
    IndexRole role = IndexRole::kOrdinary;
    std::uint8_t side = 0;  // of a relationship: 1 the referenced table, 2 the referencing one
    std::uint32_t partner = 0xFFFFFFFF;
    PageNumber partnerTable;
    std::uint8_t cascadeUpdates = 4;  // 4: no relationship
    std::uint8_t cascadeDeletes = 4;
};

struct LongValueMaps {
    std::uint16_t column = 0;  // number
    RowId owned;
    RowId free;  // may be none
};

struct Definition {
    PageNumber page;
    Version version = Version::kJet4;
    bool system = false;
    RowShape shape;
    std::vector<Column> columns;               // in the order of their numbers
    std::vector<RealIndex> realIndexes;        // in the order of creation
    std::vector<LogicalIndex> logicalIndexes;  // in the order of their names
    std::vector<LongValueMaps> longValueMaps;
    std::string validationRule;  // from the properties of the catalog
    std::string validationText;
    RowId ownedMap;
    RowId freeMap;
    // As they were when the definition was read; the file has the present ones.
    std::uint32_t rowCount = 0;
    std::uint32_t lastAutoNumber = 0;

    [[nodiscard]] std::optional<std::size_t> FindColumn(std::u16string_view name) const;
    [[nodiscard]] const LogicalIndex* FindIndex(std::u16string_view name) const;
    [[nodiscard]] const LongValueMaps* FindLongValueMaps(std::uint16_t column) const;
    // Recomputes the shape's sizes from the columns.
    void FinishShape();
};

// Reads a definition and its chain. kDamaged when it contradicts itself.
Definition ReadDefinition(Pager& pager, PageNumber page);
// The same from the joined string, as tests and checks have it.
Definition ParseDefinition(Bytes joined, const Format& format, PageNumber page);
// The joined string; `chain`, when given, takes the pages that it lies on, the first one included.
std::vector<std::byte> JoinDefinition(Pager& pager, PageNumber page,
                                      std::vector<PageNumber>* chain = nullptr);

// The string of bytes for a definition.
std::vector<std::byte> BuildDefinition(const Definition& definition);
// Writes it to the first page and as many new ones as it takes.
void WriteDefinition(Operation& operation, const Definition& definition);

// The numbers that change with the rows. They lie on the definition's first page.
class DefinitionCounters {
public:
    DefinitionCounters(Pager& pager, PageNumber page) : pager_(&pager), page_(page) {}
    [[nodiscard]] std::uint32_t RowCount() const;
    [[nodiscard]] std::uint32_t LastAutoNumber() const;
    void AddRows(Operation& operation, std::int32_t more);
    void SetLastAutoNumber(Operation& operation, std::uint32_t value);
    void AddDistinctKey(Operation& operation, std::size_t realIndex);

private:
    Pager* pager_;
    PageNumber page_;
};

// Compares names of tables, columns and indexes as the format does.
bool SameName(std::u16string_view left, std::u16string_view right, Version version);

}  // namespace jet
