#include "check/table_layout.h"

#include <algorithm>
#include <set>

#include "jet/error.h"
#include "page/bytes.h"
#include "values/code_page.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::uint16_t kDefinitionPage = 0x0102;
constexpr std::size_t kChainHead = 8;
constexpr std::uint32_t kMostColumns = 255;
// The format's limit is 32; files with a few more would still be readable.
constexpr std::uint32_t kMostIndexes = 256;
constexpr std::uint16_t kUnusedPart = 0xFFFF;
constexpr std::size_t kParts = 10;

// Takes a definition apart from its beginning to its end.
class LayoutReader {
public:
    LayoutReader(CheckContext& context, TableLayout& table)
        : context_(context),
          format_(context.format),
          jet3_(context.format.version == Version::kJet3),
          table_(table) {}

    void Read() {
        JoinPages();
        ReadHeader();
        ReadColumns();
        ReadColumnNames();
        std::sort(table_.columns.begin(), table_.columns.end(),
                  [](const Column& a, const Column& b) { return a.number < b.number; });
        ReadRealIndexes();
        ReadLogicalIndexes();
        ReadLongValueMaps();
        CheckColumns();
        CheckIndexes();
    }

private:
    [[nodiscard]] Spot Here() const { return {table_.name, table_.page, -1}; }
    void Error(const char* code, std::string sentence) {
        context_.findings.Error(Here(), code, std::move(sentence));
    }

    // Columns of a definition are read at the places of their version.
    [[nodiscard]] std::size_t Pick(std::size_t jet3, std::size_t jet4) const {
        return jet3_ ? jet3 : jet4;
    }
    [[nodiscard]] std::uint32_t Take(std::size_t size) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value |= std::uint32_t{ReadU8(bytes_, at_ + i)} << (8 * i);
        }
        at_ += size;
        return value;
    }
    [[nodiscard]] Bytes TakeBytes(std::size_t size) {
        const Bytes bytes = Slice(Bytes(bytes_), at_, size);
        at_ += size;
        return bytes;
    }

    void JoinPages() {
        std::set<std::uint32_t> seen;
        for (std::uint32_t page = table_.page; page != 0;) {
            if (!seen.insert(page).second) {
                throw Damage{"tdef-chain", "The pages of the definition run in a circle."};
            }
            const auto bytes = context_.pages.Read(page);
            if (ReadU8(bytes, 0) == (kDefinitionPage & 0xFF) && ReadU8(bytes, 1) != 1) {
                context_.findings.Error({table_.name, page, -1}, "page-header",
                                        "The second byte of the page is wrong.");
            } else if (ReadU16(bytes, 0) != kDefinitionPage) {
                throw Damage{page == table_.page ? "page-type" : "tdef-chain",
                             "Page " + std::to_string(page) + " is no page of a definition."};
            }
            table_.chain.push_back(page);
            bytes_.insert(bytes_.end(),
                          bytes.begin() + (page == table_.page ? 0 : std::ptrdiff_t{kChainHead}),
                          bytes.end());
            page = ReadU32(bytes, 4);
        }
    }

    void ReadHeader() {
        length_ = ReadU32(bytes_, 8);
        const std::size_t v = Pick(0, 4);  // Jet 4 has a constant of four bytes before
        table_.rowCount = ReadU32(bytes_, 12 + v);
        table_.lastAutoNumber = static_cast<std::int32_t>(ReadU32(bytes_, 16 + v));
        const std::uint8_t kind = ReadU8(bytes_, Pick(20, 40));
        if (kind != 'N' && kind != 'S') {
            Error("tdef-kind", "The definition is neither of a user table nor of a system table.");
        }
        table_.system = kind == 'S';
        table_.columnCount = ReadU16(bytes_, Pick(21, 41));
        table_.variableCount = ReadU16(bytes_, Pick(23, 43));
        columns_ = ReadU16(bytes_, Pick(25, 45));
        logicalIndexes_ = ReadU32(bytes_, Pick(27, 47));
        realIndexes_ = ReadU32(bytes_, Pick(31, 51));
        table_.ownedMap = RowId::FromPacked(ReadU32(bytes_, Pick(35, 55)));
        table_.freeMap = RowId::FromPacked(ReadU32(bytes_, Pick(39, 59)));
        if (columns_ > kMostColumns || logicalIndexes_ > kMostIndexes ||
            realIndexes_ > logicalIndexes_) {
            throw Damage{"tdef-counts",
                         "The definition counts more columns or indexes than a "
                         "table can have."};
        }
        if (columns_ > table_.columnCount) {
            Error("tdef-counts", "There are more columns than numbers were given out.");
        }
        at_ = format_.tdefHeaderSize + realIndexes_ * format_.indexStatisticsSize;
    }

    void ReadColumns() {
        for (std::uint32_t i = 0; i < columns_; ++i) {
            const Bytes block = TakeBytes(format_.columnBlockSize);
            Column column;
            column.type = static_cast<ColumnType>(ReadU8(block, 0));
            column.number = ReadU16(block, Pick(1, 5));
            column.variableIndex = ReadU16(block, Pick(3, 7));
            column.ordinal = ReadU16(block, Pick(5, 9));
            const std::uint8_t flags = ReadU8(block, Pick(13, 15));
            column.fixed = (flags & 0x01) != 0;
            column.autoNumber = (flags & 0x04) != 0;
            column.systemColumn = (flags & 0x10) != 0;
            column.fixedOffset = ReadU16(block, Pick(14, 21));
            column.length = ReadU16(block, Pick(16, 23));
            if (jet3_) {
                column.collation.language = ReadU16(block, 9);
                column.collation.codePage = ReadU16(block, 11);
            } else if (column.type == ColumnType::kDecimal) {
                column.precision = ReadU8(block, 11);
                column.scale = ReadU8(block, 12);
            } else {
                column.collation.language = ReadU16(block, 11);
                column.collation.version = ReadU8(block, 14);
                column.compressed = (ReadU8(block, 16) & 1) != 0;
            }
            table_.columns.push_back(column);
        }
    }

    [[nodiscard]] std::string TakeName(const char* code) {
        const std::uint32_t size = Take(format_.nameLengthWidth);
        const Bytes bytes = TakeBytes(size);
        std::u16string wide;
        if (jet3_) {
            wide = DecodeCodePage({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        } else {
            for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
                wide.push_back(static_cast<char16_t>(ReadU16(bytes, i)));
            }
        }
        const std::size_t most = std::size_t{64} * format_.bytesPerCharacter;
        if (wide.empty() || size > most || (!jet3_ && size % 2 != 0)) {
            throw Damage{code, "A name in the definition has " + std::to_string(size) + " bytes."};
        }
        return NarrowName(wide);
    }

    void ReadColumnNames() {
        std::set<std::string> names;
        for (Column& column : table_.columns) {
            column.name = TakeName("column-name");
            column.wide = WidenName(column.name);
            if (!names.insert(column.name).second) {
                Error("column-name", "Two columns have the name " + column.name + ".");
            }
        }
    }

    void ReadRealIndexes() {
        for (std::uint32_t i = 0; i < realIndexes_; ++i) {
            const Bytes block = TakeBytes(format_.realIndexBlockSize);
            RealIndexLayout index;
            for (std::size_t part = 0; part < kParts; ++part) {
                const std::size_t at = Pick(0, 4) + 3 * part;
                const std::uint16_t column = ReadU16(block, at);
                if (column == kUnusedPart) {
                    break;
                }
                index.parts.push_back({column, (ReadU8(block, at + 2) & 1) != 0});
            }
            index.map = RowId::FromPacked(ReadU32(block, Pick(30, 34)));
            index.root = ReadU32(block, Pick(34, 38));
            index.flags = ReadU8(block, Pick(38, 46));
            table_.indexes.push_back(index);
        }
    }

    void ReadLogicalIndexes() {
        const std::size_t v = Pick(0, 4);
        for (std::uint32_t i = 0; i < logicalIndexes_; ++i) {
            const Bytes block = TakeBytes(format_.logicalIndexBlockSize);
            LogicalIndexLayout index;
            index.number = ReadU32(block, v);
            index.real = ReadU32(block, v + 4);
            index.role = ReadU8(block, v + 8);
            index.partner = ReadU32(block, v + 9);
            index.partnerTable = ReadU32(block, v + 13);
            index.type = ReadU8(block, v + 19);
            table_.logicalIndexes.push_back(index);
        }
        for (LogicalIndexLayout& index : table_.logicalIndexes) {
            index.name = TakeName("tdef-length");
        }
    }

    void ReadLongValueMaps() {
        while (ReadU16(bytes_, at_) != 0xFFFF) {
            LongValueMapsLayout maps;
            maps.column = static_cast<std::uint16_t>(Take(2));
            maps.owned = RowId::FromPacked(Take(4));
            maps.free = RowId::FromPacked(Take(4));
            table_.longValues.push_back(maps);
            const Column* column = table_.FindColumn(maps.column);
            if (column == nullptr || !IsLongValue(column->type)) {
                Error("long-value-map", "There is a map of long values for column number " +
                                            std::to_string(maps.column) + ", which has none.");
            }
        }
        at_ += 2;
        if (at_ != length_) {
            Error("tdef-length", "The definition is " + std::to_string(at_) +
                                     " bytes long and says " + std::to_string(length_) + ".");
        }
        for (const Column& column : table_.columns) {
            const auto maps = std::count_if(
                table_.longValues.begin(), table_.longValues.end(),
                [&](const LongValueMapsLayout& map) { return map.column == column.number; });
            if (IsLongValue(column.type) && maps != 1) {
                Error("long-value-map", "The column " + column.name + " has " +
                                            std::to_string(maps) + " maps of long values.");
            }
        }
    }

    void CheckColumns() {
        std::set<std::uint16_t> numbers;
        std::set<std::uint16_t> variables;
        for (const Column& column : table_.columns) {
            if (!numbers.insert(column.number).second || column.number >= table_.columnCount) {
                Error("column-number", "The column " + column.name + " has the number " +
                                           std::to_string(column.number) +
                                           ", which is taken or was never given out.");
            }
            const auto type = static_cast<unsigned>(column.type);
            if (type == 0 || type > 0x11) {
                Error("column-type", "The column " + column.name + " is of the unknown type " +
                                         std::to_string(type) + ".");
            }
            // Decimals of some files declare a wrong length; their size is fixed all the same.
            const std::uint32_t size = SizeOfType(column.type);
            if (size != 0 && column.length != size && column.type != ColumnType::kDecimal) {
                Error("column-length", "The column " + column.name + " has a length of " +
                                           std::to_string(column.length) + " bytes.");
            }
            if (!column.fixed && (column.variableIndex >= table_.variableCount ||
                                  !variables.insert(column.variableIndex).second)) {
                Error("column-place", "The column " + column.name +
                                          " has a place among the variable values that is taken "
                                          "or was never given out.");
            }
        }
        CheckFixedPlaces();
    }

    void CheckFixedPlaces() {
        std::vector<const Column*> fixed;
        for (const Column& column : table_.columns) {
            if (column.fixed && column.type != ColumnType::kBoolean) {
                fixed.push_back(&column);
            }
        }
        std::sort(fixed.begin(), fixed.end(),
                  [](const Column* a, const Column* b) { return a->fixedOffset < b->fixedOffset; });
        std::uint32_t end = 0;
        for (const Column* column : fixed) {
            const std::uint32_t size = SizeOfType(column->type);
            if (column->fixedOffset < end) {
                Error("column-place",
                      "The column " + column->name + " lies over another one in the row.");
            }
            end = column->fixedOffset + (size == 0 ? column->length : size);
        }
        if (end > format_.pageSize) {
            Error("column-place", "The fixed columns are longer than a page.");
        }
    }

    void CheckIndexes() {
        std::set<std::uint32_t> numbers;
        std::vector<bool> used(table_.indexes.size(), false);
        for (const LogicalIndexLayout& index : table_.logicalIndexes) {
            if (!numbers.insert(index.number).second) {
                Error("index-definition", "Two indexes have the same number.");
            }
            if (index.real >= table_.indexes.size()) {
                Error("index-definition",
                      "The index " + index.name + " uses an index that is not there.");
                continue;
            }
            used[index.real] = true;
            std::string& name = table_.indexes[index.real].name;
            name = name.empty() ? index.name : name;
        }
        for (std::size_t i = 0; i < table_.indexes.size(); ++i) {
            RealIndexLayout& index = table_.indexes[i];
            const bool known = std::all_of(index.parts.begin(), index.parts.end(),
                                           [&](const RealIndexLayout::Part& part) {
                                               return table_.FindColumn(part.column) != nullptr;
                                           });
            if (!known || index.parts.empty()) {
                Error("index-definition",
                      "The index " + index.name + " is on a column that is not there, or on none.");
            }
            if (!used[i]) {
                Error("index-definition", "An index has no name.");
            }
            index.name = index.name.empty() ? "number " + std::to_string(i) : index.name;
        }
    }

    CheckContext& context_;
    const Format& format_;
    bool jet3_;
    TableLayout& table_;
    std::vector<std::byte> bytes_;
    std::size_t at_ = 0;
    std::size_t length_ = 0;
    std::uint32_t columns_ = 0;
    std::uint32_t logicalIndexes_ = 0;
    std::uint32_t realIndexes_ = 0;
};

}  // namespace

const Column* TableLayout::FindColumn(std::uint16_t number) const {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const Column& column) { return column.number == number; });
    return found == columns.end() ? nullptr : &*found;
}

std::optional<TableLayout> ReadTableLayout(CheckContext& context, std::uint32_t page,
                                           const std::string& name) {
    TableLayout table;
    table.name = name;
    table.page = page;
    const Spot spot{name, page, -1};
    try {
        LayoutReader(context, table).Read();
        return table;
    } catch (const Damage& damage) {
        context.findings.Error(spot, damage.code, damage.sentence);
    } catch (const Error&) {
        context.findings.Error(spot, "tdef-length", "The definition ends in the middle.");
    }
    return std::nullopt;
}

}  // namespace jet
