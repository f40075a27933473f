// From a definition to the bytes that definition.h and definition.cpp picture.
#include <algorithm>

#include "page/bytes.h"
#include "table/definition.h"
#include "table/definition_layout.h"
#include "values/text.h"

namespace jet {

namespace {

// Appends blocks of known size; their unused bytes are zero.
class Writer {
public:
    explicit Writer(const Format& format) : layout_(LayoutOf(format)) {}

    MutableBytes Add(std::size_t size) {
        const std::size_t at = bytes_.size();
        bytes_.resize(at + size);
        return MutableBytes(bytes_).subspan(at);
    }
    void AddName(std::u16string_view name) {
        std::vector<std::byte> text;
        EncodeText(name, layout_.format.version, false, text);
        if (layout_.format.nameLengthWidth == 1) {
            WriteU8(Add(1), 0, static_cast<std::uint8_t>(text.size()));
        } else {
            WriteU16(Add(2), 0, static_cast<std::uint16_t>(text.size()));
        }
        bytes_.insert(bytes_.end(), text.begin(), text.end());
    }
    [[nodiscard]] const DefinitionLayout& Layout() const { return layout_; }
    [[nodiscard]] std::vector<std::byte>& Finished() { return bytes_; }

private:
    DefinitionLayout layout_;
    std::vector<std::byte> bytes_;
};

void AddHeader(Writer& writer, const Definition& definition) {
    const DefinitionLayout& at = writer.Layout();
    const MutableBytes header = writer.Add(at.format.tdefHeaderSize);
    const bool narrow = definition.version == Version::kJet3;
    WriteU16(header, 0, kDefinitionPageType);
    if (narrow) {
        WriteU16(header, 2, kJet3DefinitionMark);
    } else {
        WriteU32(header, 12, kDefinitionConstant);
        WriteU32(header, 24, 1);
    }
    WriteU32(header, at.rowCount, definition.rowCount);
    WriteU32(header, at.lastAutoNumber, definition.lastAutoNumber);
    WriteU8(header, at.kind, definition.system ? kSystemTable : kUserTable);
    WriteU16(header, at.kind + 1, definition.shape.columnCount);
    WriteU16(header, at.kind + 3, definition.shape.variableCount);
    WriteU16(header, at.kind + 5, static_cast<std::uint16_t>(definition.columns.size()));
    WriteU32(header, at.kind + 7, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
    WriteU32(header, at.kind + 11, static_cast<std::uint32_t>(definition.realIndexes.size()));
    WriteU32(header, at.kind + 15, definition.ownedMap.Packed());
    WriteU32(header, at.kind + 19, definition.freeMap.Packed());
}

std::uint8_t ColumnFlags(const Column& column) {
    unsigned flags = kAnyColumn;
    if (column.fixed) flags |= kFixedColumn;
    if (column.autoNumber) flags |= kAutoNumberColumn;
    if (column.autoGuid) flags |= kAutoGuidColumn;
    if (column.systemColumn) flags |= kSystemColumn;
    if (column.securityId) flags |= kSecurityColumn;
    return static_cast<std::uint8_t>(flags);
}

void AddColumn(Writer& writer, const Column& column) {
    const DefinitionLayout& at = writer.Layout();
    const MutableBytes block = writer.Add(at.format.columnBlockSize);
    WriteU8(block, 0, static_cast<std::uint8_t>(column.type));
    WriteU16(block, at.columnNumber, column.number);
    WriteU16(block, at.columnNumber + 2, column.variableIndex);
    WriteU16(block, at.columnNumber + 4, column.ordinal);
    WriteU16(block, at.columnLanguage, column.collation.language);
    if (at.format.version == Version::kJet3) {
        WriteU16(block, at.columnLanguage - 2, column.sortVersion);
        WriteU16(block, at.columnLanguage + 2, column.collation.codePage);
    } else {
        WriteU32(block, 1, kDefinitionConstant);
        WriteU8(block, 14, column.collation.version);
        WriteU8(block, 16, column.compressed ? 1 : 0);
        if (column.type == ColumnType::kDecimal) {
            WriteU8(block, 11, column.precision);
            WriteU8(block, 12, column.scale);
            WriteU16(block, 13, 0);
        }
    }
    WriteU8(block, at.columnFlags, ColumnFlags(column));
    WriteU16(block, at.columnOffset, column.fixed ? column.fixedOffset : std::uint16_t{0});
    WriteU16(block, at.columnOffset + 2, column.length);
}

void AddRealIndex(Writer& writer, const Definition& definition, const RealIndex& index) {
    const DefinitionLayout& at = writer.Layout();
    const MutableBytes block = writer.Add(at.format.realIndexBlockSize);
    if (at.realParts != 0) WriteU32(block, 0, kRealIndexConstant);
    for (std::size_t i = 0; i < kMostIndexParts; ++i) {
        const bool used = i < index.parts.size();
        const std::size_t place = at.realParts + 3 * i;
        WriteU16(block, place, used ? definition.columns[index.parts[i].column].number : kNoColumn);
        WriteU8(block, place + 2, used && index.parts[i].ascending ? 1 : 0);
    }
    WriteU32(block, at.realParts + 30, index.map.Packed());
    WriteU32(block, at.realParts + 34, index.root.value);
    WriteU8(block, at.realFlags, index.flags);
}

void AddLogicalIndex(Writer& writer, const LogicalIndex& index) {
    const DefinitionLayout& at = writer.Layout();
    const MutableBytes block = writer.Add(at.format.logicalIndexBlockSize);
    if (at.logicalFields != 0) WriteU32(block, 0, kDefinitionConstant);
    const MutableBytes fields = block.subspan(at.logicalFields);
    WriteU32(fields, 0, index.number);
    WriteU32(fields, 4, index.real);
    WriteU8(fields, 8, index.side);
    WriteU32(fields, 9, index.partner);
    WriteU32(fields, 13, index.partnerTable.value);
    WriteU8(fields, 17, index.cascadeUpdates);
    WriteU8(fields, 18, index.cascadeDeletes);
    WriteU8(fields, 19, static_cast<std::uint8_t>(index.role));
}

void AddStatistics(Writer& writer, const RealIndex& index) {
    const MutableBytes block = writer.Add(writer.Layout().format.indexStatisticsSize);
    WriteU32(block, 0, index.builtEntries);
    WriteU32(block, 4, index.distinctKeys);
}

// The original engine lists the columns of its own tables by name in Jet 4 files.
std::vector<const Column*> ColumnOrder(const Definition& definition, bool byName) {
    std::vector<const Column*> order;
    for (const Column& column : definition.columns) order.push_back(&column);
    if (byName) {
        std::stable_sort(order.begin(), order.end(), [&](const Column* left, const Column* right) {
            return CompareText(left->wide, right->wide, definition.version) < 0;
        });
    }
    return order;
}

void AddLongValueMaps(Writer& writer, const Definition& definition) {
    for (const Column* column : ColumnOrder(definition, definition.system)) {
        const LongValueMaps* maps = definition.FindLongValueMaps(column->number);
        if (maps == nullptr) continue;
        const MutableBytes block = writer.Add(10);
        WriteU16(block, 0, maps->column);
        WriteU32(block, 2, maps->owned.Packed());
        WriteU32(block, 6, maps->free.Packed());
    }
    WriteU16(writer.Add(2), 0, kNoColumn);
}

}  // namespace

std::vector<std::byte> BuildDefinition(const Definition& definition) {
    const Format& format = FormatOf(definition.version);
    Writer writer(format);
    AddHeader(writer, definition);
    for (const RealIndex& index : definition.realIndexes) AddStatistics(writer, index);
    const auto columns =
        ColumnOrder(definition, definition.system && definition.version == Version::kJet4);
    for (const Column* column : columns) AddColumn(writer, *column);
    for (const Column* column : columns) writer.AddName(column->wide);
    for (const RealIndex& index : definition.realIndexes) {
        AddRealIndex(writer, definition, index);
    }
    for (const LogicalIndex& index : definition.logicalIndexes) AddLogicalIndex(writer, index);
    for (const LogicalIndex& index : definition.logicalIndexes) writer.AddName(index.wide);
    AddLongValueMaps(writer, definition);
    std::vector<std::byte>& bytes = writer.Finished();
    WriteU32(bytes, 8, static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

void WriteDefinition(Operation& operation, const Definition& definition) {
    const Format& format = operation.FileFormat();
    const std::vector<std::byte> joined = BuildDefinition(definition);
    PageNumber page = definition.page;
    std::size_t written = 0;
    while (true) {
        const bool first = written == 0;
        const std::size_t head = first ? 0 : kDefinitionPageHead;
        const std::size_t size = std::min(joined.size() - written, format.pageSize - head);
        const MutableBytes bytes = operation.Change(page);
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
        std::copy_n(joined.begin() + static_cast<std::ptrdiff_t>(written), size,
                    bytes.begin() + static_cast<std::ptrdiff_t>(head));
        written += size;
        const PageNumber next = written < joined.size() ? operation.Allocate() : PageNumber{};
        const std::size_t room = format.pageSize - head - size;
        WriteU16(bytes, 0, kDefinitionPageType);
        if (format.version == Version::kJet3) {
            WriteU16(bytes, 2, kJet3DefinitionMark);
        } else {
            WriteU16(bytes, 2, static_cast<std::uint16_t>(room < 8 ? 0 : room - 8));
        }
        WriteU32(bytes, 4, next.value);
        if (!next) return;
        page = next;
    }
}

}  // namespace jet
