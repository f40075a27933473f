#include "catalog/table_maker.h"

#include <algorithm>

#include "index/index_tree.h"
#include "jet/error.h"

namespace jet {

namespace {

std::uint16_t StoredLength(const Column& column) {
    switch (column.type) {
        case ColumnType::kBoolean:
            return 1;
        case ColumnType::kText:
        case ColumnType::kBinary:
            return column.length;
        default:
            return static_cast<std::uint16_t>(SizeOfType(column.type));
    }
}

}  // namespace

void PlaceColumns(Definition& definition, const FileHeader& header) {
    std::uint16_t number = 0;
    std::uint16_t variable = 0;
    std::uint32_t fixed = 0;
    for (Column& column : definition.columns) {
        column.number = number++;
        column.variableIndex = variable;
        column.length = StoredLength(column);
        column.sortVersion = header.sortVersion;
        column.collation = {.language = header.language,
                            .version = static_cast<std::uint8_t>(
                                definition.version == Version::kJet4 ? header.sortVersion : 0),
                            .codePage = header.codePage};
        if (!column.fixed) {
            ++variable;
        } else if (column.type == ColumnType::kBoolean) {
            column.fixedOffset = 0;
        } else {
            column.fixedOffset = static_cast<std::uint16_t>(fixed);
            fixed += column.length;
            if (fixed > FormatOf(definition.version).largestRow) {
                throw Error(ErrorKind::kRecordTooLarge, "The record is too large.");
            }
        }
    }
    definition.shape.columnCount = number;
    definition.shape.variableCount = variable;
    definition.FinishShape();
}

void MakeTablePages(Operation& operation, Definition& definition) {
    definition.ownedMap = UsageMap::Create(operation).Row();
    definition.freeMap = UsageMap::Create(operation).Row();
    for (const Column& column : definition.columns) {
        if (!IsLongValue(column.type)) continue;
        LongValueMaps maps;
        maps.column = column.number;
        maps.owned = UsageMap::Create(operation).Row();
        maps.free = UsageMap::Create(operation).Row();
        definition.longValueMaps.push_back(maps);
    }
    for (RealIndex& index : definition.realIndexes) {
        index.map = UsageMap::Create(operation).Row();
    }
    for (RealIndex& index : definition.realIndexes) {
        UsageMap map(operation.Pages(), index.map);
        index.root = IndexTree::Create(operation, definition.page, map);
    }
    WriteDefinition(operation, definition);
}

void SortIndexNames(Definition& definition) {
    std::stable_sort(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                     [&](const LogicalIndex& left, const LogicalIndex& right) {
                         return CompareText(left.wide, right.wide, definition.version) < 0;
                     });
}

}  // namespace jet
