// The blocks of a definition.
//
// Statistics of a real index: built entries, distinct keys (and 0 in Jet 4), 4 bytes each.
//
// Jet 3  Jet 4  Size  Column
// 0      0      1     type
// -      1      4     1625
// 1      5      2     number
// 3      7      2     place among the variable values
// 5      9      2     ordinal
// 7      -      2     sub-version of the sort order
// 9      11     2     language of the sort order (decimal: precision and scale, a byte each)
// 11     -      2     code page
// -      14     1     version of the sort order
// 13     15     1     flags: 1 fixed area, 2 always, 4 auto-number, 10 system, 20 security id,
//                     40 automatic GUID, 80 hyperlink
// -      16     1     1: compressed text
// 14     21     2     offset in the fixed area
// 16     23     2     length in bytes
//
// Jet 3  Jet 4  Size  Real index
// -      0      4     1923
// 0      4      30    ten times: number of a column (FFFF for none), 1 for ascending
// 30     34     4     map of the index's pages
// 34     38     4     root page
// 38     46     1     flags: 1 unique, 2 ignores nulls, 8 required, 80 always in Jet 4
//
// Jet 3  Jet 4  Size  Logical index
// -      0      4     1625
// 0      4      4     number
// 4      8      4     which real index
// 8      12     1     side of a relationship: 0 none, 1 referenced, 2 referencing
// 9      13     4     the partner's number, FFFFFFFF for none
// 13     17     4     the partner's table, 0 for none
// 17     21     1     cascades updates, 4 without a relationship
// 18     22     1     cascades deletes, 4 without a relationship
// 19     23     1     0 ordinary, 1 primary key, 2 relationship
//
// Maps of a long-value column: number, owned pages, pages with room; FFFF ends the list.
#include "table/definition.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "table/definition_layout.h"
#include "values/text.h"

namespace jet {

namespace {

[[noreturn]] void ThrowBadDefinition() {
    ThrowDamaged("The file is damaged: the definition of a table cannot be read.");
}

// Reads the parts of the string one after the other.
class Reader {
public:
    Reader(Bytes bytes, const Format& format) : bytes_(bytes), layout_(LayoutOf(format)) {}

    void Skip(std::size_t size) { Take(size); }
    Bytes Take(std::size_t size) {
        if (size > bytes_.size() - at_) ThrowBadDefinition();
        const Bytes taken = bytes_.subspan(at_, size);
        at_ += size;
        return taken;
    }
    std::u16string TakeName() {
        const std::size_t width = layout_.format.nameLengthWidth;
        const Bytes prefix = Take(width);
        const std::size_t size = width == 1 ? ReadU8(prefix, 0) : ReadU16(prefix, 0);
        std::u16string name;
        // Names are never compressed, not even those that begin like compressed text.
        DecodePlain(Take(size), name);
        return name;
    }
    [[nodiscard]] const DefinitionLayout& Layout() const { return layout_; }

private:
    void DecodePlain(Bytes stored, std::u16string& name) const {
        if (layout_.format.version == Version::kJet3) {
            DecodeText(stored, Version::kJet3, name);
            return;
        }
        for (std::size_t i = 0; i + 1 < stored.size(); i += 2) {
            name.push_back(static_cast<char16_t>(ReadU16(stored, i)));
        }
    }

    Bytes bytes_;
    DefinitionLayout layout_;
    std::size_t at_ = 0;
};

Column ParseColumn(Bytes block, const DefinitionLayout& at) {
    Column column;
    column.type = static_cast<ColumnType>(ReadU8(block, 0));
    column.number = ReadU16(block, at.columnNumber);
    column.variableIndex = ReadU16(block, at.columnNumber + 2);
    column.ordinal = ReadU16(block, at.columnNumber + 4);
    const std::uint8_t flags = ReadU8(block, at.columnFlags);
    column.fixed = (flags & kFixedColumn) != 0;
    column.autoNumber = (flags & kAutoNumberColumn) != 0 && column.type == ColumnType::kLong;
    column.autoGuid = (flags & kAutoGuidColumn) != 0 && column.type == ColumnType::kGuid;
    column.systemColumn = (flags & kSystemColumn) != 0;
    column.securityId = (flags & kSecurityColumn) != 0;
    column.fixedOffset = ReadU16(block, at.columnOffset);
    column.length = ReadU16(block, at.columnOffset + 2);
    column.collation.language = ReadU16(block, at.columnLanguage);
    if (at.format.version == Version::kJet3) {
        column.sortVersion = ReadU16(block, at.columnLanguage - 2);
        column.collation.codePage = ReadU16(block, at.columnLanguage + 2);
        return column;
    }
    column.collation.version = ReadU8(block, 14);
    column.compressed = (ReadU8(block, 16) & 1) != 0;
    if (column.type == ColumnType::kDecimal) {
        column.precision = ReadU8(block, 11);
        column.scale = ReadU8(block, 12);
        // Real files declare other lengths; the value always has the same. The declared one is kept
        // where nothing is reckoned with it.
        if (column.fixed) column.length = static_cast<std::uint16_t>(SizeOfType(column.type));
    }
    return column;
}

void ParseColumns(Reader& reader, std::size_t count, Definition& definition) {
    for (std::size_t i = 0; i < count; ++i) {
        definition.columns.push_back(
            ParseColumn(reader.Take(reader.Layout().format.columnBlockSize), reader.Layout()));
    }
    for (Column& column : definition.columns) {
        column.wide = reader.TakeName();
        column.name = NarrowName(column.wide);
    }
    std::stable_sort(
        definition.columns.begin(), definition.columns.end(),
        [](const Column& left, const Column& right) { return left.number < right.number; });
}

void CheckColumns(const Definition& definition) {
    const RowShape& shape = definition.shape;
    for (std::size_t i = 0; i < definition.columns.size(); ++i) {
        const Column& column = definition.columns[i];
        const bool twice = i > 0 && definition.columns[i - 1].number == column.number;
        const bool placed =
            column.fixed ? std::uint32_t{column.fixedOffset} + column.length <= kLargestPageSize
                         : column.variableIndex < shape.variableCount;
        const bool sized = SizeOfType(column.type) == 0 || !column.fixed ||
                           column.length >= SizeOfType(column.type);
        if (twice || column.number >= shape.columnCount || !sized ||
            (!placed && column.type != ColumnType::kBoolean)) {
            ThrowBadDefinition();
        }
    }
}

RealIndex ParseRealIndex(Bytes block, const DefinitionLayout& at, const Definition& definition) {
    RealIndex index;
    for (std::size_t i = 0; i < kMostIndexParts; ++i) {
        const std::uint16_t number = ReadU16(block, at.realParts + 3 * i);
        if (number == kNoColumn) break;
        const auto found =
            std::find_if(definition.columns.begin(), definition.columns.end(),
                         [number](const Column& column) { return column.number == number; });
        const std::uint8_t order = ReadU8(block, at.realParts + 3 * i + 2);
        if (found == definition.columns.end() || order > 1) {
            index.unknownPart = true;
            break;
        }
        index.parts.push_back(
            {static_cast<std::size_t>(found - definition.columns.begin()), order == 1});
    }
    if (index.parts.empty()) index.unknownPart = true;
    index.map = RowId::FromPacked(ReadU32(block, at.realParts + 30));
    index.root = PageNumber{ReadU32(block, at.realParts + 34)};
    index.flags = ReadU8(block, at.realFlags);
    return index;
}

LogicalIndex ParseLogicalIndex(Bytes block, const DefinitionLayout& at) {
    const Bytes fields = block.subspan(at.logicalFields);
    LogicalIndex index;
    index.number = ReadU32(fields, 0);
    index.real = ReadU32(fields, 4);
    index.side = ReadU8(fields, 8);
    index.partner = ReadU32(fields, 9);
    index.partnerTable = PageNumber{ReadU32(fields, 13)};
    index.cascadeUpdates = ReadU8(fields, 17);
    index.cascadeDeletes = ReadU8(fields, 18);
    index.role = static_cast<IndexRole>(ReadU8(fields, 19));
    return index;
}

void ParseIndexes(Reader& reader, std::size_t logicalCount, Definition& definition) {
    const DefinitionLayout& at = reader.Layout();
    for (RealIndex& index : definition.realIndexes) {
        const RealIndex parsed =
            ParseRealIndex(reader.Take(at.format.realIndexBlockSize), at, definition);
        const std::uint32_t built = index.builtEntries;
        const std::uint32_t distinct = index.distinctKeys;
        index = parsed;
        index.builtEntries = built;
        index.distinctKeys = distinct;
    }
    for (std::size_t i = 0; i < logicalCount; ++i) {
        definition.logicalIndexes.push_back(
            ParseLogicalIndex(reader.Take(at.format.logicalIndexBlockSize), at));
    }
    for (LogicalIndex& index : definition.logicalIndexes) {
        index.wide = reader.TakeName();
        index.name = NarrowName(index.wide);
        if (index.real >= definition.realIndexes.size()) ThrowBadDefinition();
    }
}

void ParseLongValueMaps(Reader& reader, Definition& definition) {
    while (true) {
        const std::uint16_t column = ReadU16(reader.Take(2), 0);
        if (column == kNoColumn) return;
        const Bytes maps = reader.Take(8);
        definition.longValueMaps.push_back({.column = column,
                                            .owned = RowId::FromPacked(ReadU32(maps, 0)),
                                            .free = RowId::FromPacked(ReadU32(maps, 4))});
    }
}

// Counts that no table can have are damage. What is only unknown about an index is noted there.
void RequireCounts(std::uint32_t columns, std::uint32_t logical, std::uint32_t real) {
    if (columns > kMostColumns || logical > kMostIndexes || real > kMostIndexes) {
        ThrowBadDefinition();
    }
}

char16_t Fold(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

}  // namespace

std::vector<std::byte> JoinDefinition(Pager& pager, PageNumber page,
                                      std::vector<PageNumber>* chain) {
    const Format& format = pager.FileFormat();
    std::vector<std::byte> joined;
    std::vector<PageNumber> visited;
    std::uint32_t length = format.tdefHeaderSize;
    PageNumber next = page;
    while (next) {
        if (std::find(visited.begin(), visited.end(), next) != visited.end()) ThrowBadDefinition();
        visited.push_back(next);
        const PageRef ref = pager.Page(next);
        const Bytes bytes = ref.Data();
        if (ReadU16(bytes, 0) != kDefinitionPageType) ThrowBadDefinition();
        if (joined.empty()) length = ReadU32(bytes, 8);
        if (length > kLongestDefinition) ThrowBadDefinition();
        const std::size_t head = joined.empty() ? 0 : kDefinitionPageHead;
        joined.insert(joined.end(), bytes.begin() + static_cast<std::ptrdiff_t>(head), bytes.end());
        if (joined.size() >= length) break;
        next = PageNumber{ReadU32(bytes, 4)};
    }
    if (chain != nullptr) *chain = visited;
    if (joined.size() < length || length < format.tdefHeaderSize) ThrowBadDefinition();
    joined.resize(length);
    return joined;
}

Definition ParseDefinition(Bytes joined, const Format& format, PageNumber page) {
    Reader reader(joined, format);
    const DefinitionLayout& at = reader.Layout();
    const Bytes header = reader.Take(format.tdefHeaderSize);
    Definition definition;
    definition.page = page;
    definition.version = format.version;
    definition.rowCount = ReadU32(header, at.rowCount);
    definition.lastAutoNumber = ReadU32(header, at.lastAutoNumber);
    definition.system = ReadU8(header, at.kind) == kSystemTable;
    definition.shape.columnCount = ReadU16(header, at.kind + 1);
    definition.shape.variableCount = ReadU16(header, at.kind + 3);
    const std::uint32_t columns = ReadU16(header, at.kind + 5);
    const std::uint32_t logical = ReadU32(header, at.kind + 7);
    const std::uint32_t real = ReadU32(header, at.kind + 11);
    definition.ownedMap = RowId::FromPacked(ReadU32(header, at.kind + 15));
    definition.freeMap = RowId::FromPacked(ReadU32(header, at.kind + 19));
    RequireCounts(columns, logical, real);
    for (std::uint32_t i = 0; i < real; ++i) {
        const Bytes statistics = reader.Take(format.indexStatisticsSize);
        RealIndex index;
        index.builtEntries = ReadU32(statistics, 0);
        index.distinctKeys = ReadU32(statistics, 4);
        definition.realIndexes.push_back(index);
    }
    ParseColumns(reader, columns, definition);
    CheckColumns(definition);
    ParseIndexes(reader, logical, definition);
    ParseLongValueMaps(reader, definition);
    definition.FinishShape();
    return definition;
}

Definition ReadDefinition(Pager& pager, PageNumber page) {
    return ParseDefinition(JoinDefinition(pager, page), pager.FileFormat(), page);
}

void Definition::FinishShape() {
    shape.fixedSize = 0;
    shape.firstVariable = 0;
    for (const Column& column : columns) {
        if (column.fixed && column.type != ColumnType::kBoolean) {
            shape.fixedSize = std::max<std::uint32_t>(
                shape.fixedSize, std::uint32_t{column.fixedOffset} + column.length);
        }
        if (!column.fixed && column.variableIndex == 0 && column.type != ColumnType::kBoolean) {
            shape.firstVariable = column.number;
        }
    }
}

std::optional<std::size_t> Definition::FindColumn(std::u16string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (SameName(columns[i].wide, name, version)) return i;
    }
    return std::nullopt;
}

const LogicalIndex* Definition::FindIndex(std::u16string_view name) const {
    for (const LogicalIndex& index : logicalIndexes) {
        if (SameName(index.wide, name, version)) return &index;
    }
    return nullptr;
}

const LongValueMaps* Definition::FindLongValueMaps(std::uint16_t column) const {
    for (const LongValueMaps& maps : longValueMaps) {
        if (maps.column == column) return &maps;
    }
    return nullptr;
}

std::uint32_t DefinitionCounters::RowCount() const {
    return ReadU32(pager_->Page(page_).Data(), LayoutOf(pager_->FileFormat()).rowCount);
}

std::uint32_t DefinitionCounters::LastAutoNumber() const {
    return ReadU32(pager_->Page(page_).Data(), LayoutOf(pager_->FileFormat()).lastAutoNumber);
}

void DefinitionCounters::AddRows(Operation& operation, std::int32_t more) {
    const std::size_t at = LayoutOf(pager_->FileFormat()).rowCount;
    const MutableBytes page = operation.ChangePart(page_, at, 4);
    const std::uint32_t count = ReadU32(page, at);
    // A count that was wrong before must not wrap around.
    const bool below = more < 0 && count < static_cast<std::uint32_t>(-more);
    WriteU32(page, at, below ? 0 : count + static_cast<std::uint32_t>(more));
}

void DefinitionCounters::SetLastAutoNumber(Operation& operation, std::uint32_t value) {
    const std::size_t at = LayoutOf(pager_->FileFormat()).lastAutoNumber;
    WriteU32(operation.ChangePart(page_, at, 4), at, value);
}

void DefinitionCounters::AddDistinctKey(Operation& operation, std::size_t realIndex) {
    const Format& format = pager_->FileFormat();
    const std::size_t at = format.tdefHeaderSize + realIndex * format.indexStatisticsSize + 4;
    const MutableBytes page = operation.ChangePart(page_, at, 4);
    WriteU32(page, at, ReadU32(page, at) + 1);
}

bool SameName(std::u16string_view left, std::u16string_view right, Version version) {
    const bool equal = left.size() == right.size() &&
                       std::equal(left.begin(), left.end(), right.begin(),
                                  [](char16_t a, char16_t b) { return Fold(a) == Fold(b); });
    if (equal) return true;
    const auto isPlain = [](std::u16string_view name) {
        return std::all_of(name.begin(), name.end(), [](char16_t c) { return c < 0x80; });
    };
    // Only other letters than the plain ones need the rules of the sort order.
    if (isPlain(left) && isPlain(right)) return false;
    return CompareText(left, right, version) == 0;
}

}  // namespace jet
