#include "catalog/new_table.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "catalog/table_maker.h"
#include "jet/error.h"
#include "table/definition_layout.h"
#include "values/code_page.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::size_t kLongestName = 64;
constexpr std::size_t kMostIndexesOfTable = 32;
constexpr int kLongestText = 255;
constexpr int kLongestBinaryJet3 = 255;
constexpr int kLongestBinaryJet4 = 510;
constexpr int kHighestPrecision = 28;

// A name that the file cannot hold as it is would be another one, perhaps that of something else.
void RequireName(std::string_view utf8, Version version) {
    constexpr std::u16string_view kForbidden = u".!`[]";
    const std::u16string name = WidenName(utf8);
    bool held = NarrowName(name) == utf8;
    if (version == Version::kJet3) static_cast<void>(EncodeCodePage(name, &held));
    const bool bad = name.empty() || name.size() > kLongestName || name.front() == u' ' ||
                     std::any_of(name.begin(), name.end(), [&](char16_t c) {
                         return c < u' ' || kForbidden.find(c) != std::u16string_view::npos;
                     });
    if (bad || !held) {
        throw Error(ErrorKind::kBadName, "'" + NarrowName(name) + "' is not a valid name.");
    }
}

[[noreturn]] void ThrowUnsupported(const std::string& what) {
    throw Error(ErrorKind::kUnsupported, what);
}

std::uint16_t LengthInBytes(const ColumnSchema& schema, Version version) {
    const bool jet3 = version == Version::kJet3;
    const bool text = schema.type == ColumnType::kText;
    const int longest = text ? kLongestText : jet3 ? kLongestBinaryJet3 : kLongestBinaryJet4;
    const int length = schema.length == 0 ? longest : schema.length;
    if (length < 0 || length > longest) {
        ThrowUnsupported("The field '" + schema.name + "' cannot be that long.");
    }
    return static_cast<std::uint16_t>(text && !jet3 ? 2 * length : length);
}

void RequireType(const ColumnSchema& schema, Version version) {
    const bool variable = schema.type == ColumnType::kText || schema.type == ColumnType::kBinary ||
                          IsLongValue(schema.type) || schema.type == ColumnType::kBoolean;
    const bool known = variable || SizeOfType(schema.type) != 0;
    const bool late = schema.type == ColumnType::kDecimal && version == Version::kJet3;
    if (!known || late) {
        ThrowUnsupported("The file's format has no fields of the type of '" + schema.name + "'.");
    }
    if (schema.autoNumber && schema.type != ColumnType::kLong) {
        ThrowUnsupported("Only a field of type long can number its records: '" + schema.name +
                         "'.");
    }
    if (schema.type == ColumnType::kDecimal &&
        (schema.precision < 1 || schema.precision > kHighestPrecision || schema.scale < 0 ||
         schema.scale > schema.precision)) {
        ThrowUnsupported("The field '" + schema.name + "' cannot have that many digits.");
    }
}

Column ColumnOf(const ColumnSchema& schema, Version version) {
    RequireType(schema, version);
    Column column;
    column.wide = WidenName(schema.name);
    column.name = schema.name;
    column.type = schema.type;
    column.autoNumber = schema.autoNumber;
    const bool sized = schema.type == ColumnType::kText || schema.type == ColumnType::kBinary;
    column.fixed = sized ? schema.fixedLength : !IsLongValue(schema.type);
    if (sized) column.length = LengthInBytes(schema, version);
    column.compressed = schema.type == ColumnType::kText && schema.compressed &&
                        !schema.fixedLength && version == Version::kJet4;
    if (schema.type == ColumnType::kDecimal) {
        column.precision = static_cast<std::uint8_t>(schema.precision);
        column.scale = static_cast<std::uint8_t>(schema.scale);
    }
    return column;
}

std::uint8_t FlagsOf(const IndexSchema& schema, Version version) {
    unsigned flags = version == Version::kJet4 ? 0x80 : 0;
    if (schema.unique || schema.primary) flags |= kUniqueIndex;
    if (schema.required || schema.primary) flags |= kRequiredIndex;
    if (schema.ignoreNulls) flags |= kIgnoreNullsIndex;
    return static_cast<std::uint8_t>(flags);
}

RealIndex RealIndexOf(const IndexSchema& schema, const Definition& definition) {
    if (schema.columns.empty() || schema.columns.size() > kMostIndexParts) {
        ThrowUnsupported("The index '" + schema.name + "' has no fields or too many.");
    }
    if (schema.relation) ThrowUnsupported("Relationships cannot be made here.");
    RealIndex index;
    index.flags = FlagsOf(schema, definition.version);
    for (const IndexColumn& part : schema.columns) {
        const auto column = definition.FindColumn(WidenName(part.name));
        if (!column) {
            throw Error(
                ErrorKind::kNoSuchField,
                "The index '" + schema.name + "' names the unknown field '" + part.name + "'.");
        }
        const bool again = std::any_of(
            index.parts.begin(), index.parts.end(),
            [&column](const RealIndex::Part& other) { return other.column == *column; });
        if (again) {
            ThrowUnsupported("The index '" + schema.name + "' names the field '" + part.name +
                             "' twice.");
        }
        index.parts.push_back({*column, part.ascending});
    }
    return index;
}

bool IsSameIndex(const RealIndex& left, const RealIndex& right) {
    return left.flags == right.flags &&
           std::equal(left.parts.begin(), left.parts.end(), right.parts.begin(), right.parts.end(),
                      [](const RealIndex::Part& a, const RealIndex::Part& b) {
                          return a.column == b.column && a.ascending == b.ascending;
                      });
}

// Two indexes that are the same but for their names share one tree.
std::uint32_t PlaceOf(const RealIndex& index, std::vector<RealIndex>& all) {
    const auto same = std::find_if(
        all.begin(), all.end(), [&](const RealIndex& other) { return IsSameIndex(index, other); });
    const auto place = static_cast<std::uint32_t>(same - all.begin());
    if (same == all.end()) all.push_back(index);
    return place;
}

void AddIndex(const IndexSchema& schema, Definition& definition) {
    LogicalIndex index;
    index.wide = WidenName(schema.name);
    index.name = schema.name;
    RequireName(schema.name, definition.version);
    if (definition.FindIndex(index.wide) != nullptr) {
        throw Error(ErrorKind::kAlreadyExists, "The index '" + schema.name + "' already exists.");
    }
    const bool second =
        std::any_of(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                    [](const LogicalIndex& other) { return other.role == IndexRole::kPrimary; });
    if (schema.primary && second) ThrowUnsupported("A table can have only one primary key.");
    index.number = static_cast<std::uint32_t>(definition.logicalIndexes.size());
    index.real = PlaceOf(RealIndexOf(schema, definition), definition.realIndexes);
    index.role = schema.primary ? IndexRole::kPrimary : IndexRole::kOrdinary;
    definition.logicalIndexes.push_back(index);
}

ColumnSchema SchemaOfColumn(const Column& column, Version version) {
    ColumnSchema schema;
    schema.name = column.name;
    schema.type = column.type;
    const bool halved = version == Version::kJet4 && column.type == ColumnType::kText;
    schema.length = halved ? column.length / 2 : column.length;
    schema.autoNumber = column.autoNumber;
    schema.fixedLength =
        column.fixed && (column.type == ColumnType::kText || column.type == ColumnType::kBinary);
    schema.compressed = column.compressed;
    schema.precision = column.precision;
    schema.scale = column.scale;
    schema.required = column.required;
    schema.allowZeroLength = column.allowZeroLength;
    schema.defaultValue = column.defaultValue;
    schema.validationRule = column.validationRule;
    schema.validationText = column.validationText;
    return schema;
}

}  // namespace

Definition DefinitionOf(const TableSchema& schema, Version version) {
    RequireName(schema.name, version);
    if (schema.columns.empty() || schema.columns.size() > kMostColumns) {
        ThrowUnsupported("A table must have between 1 and 255 fields.");
    }
    if (schema.indexes.size() > kMostIndexesOfTable) {
        ThrowUnsupported("A table can have no more than 32 indexes.");
    }
    Definition definition;
    definition.version = version;
    bool numbered = false;
    for (const ColumnSchema& column : schema.columns) {
        Column made = ColumnOf(column, version);
        RequireName(column.name, version);
        if (made.autoNumber && std::exchange(numbered, true)) {
            ThrowUnsupported("A table can number its records in one field only.");
        }
        if (definition.FindColumn(made.wide)) {
            throw Error(ErrorKind::kAlreadyExists,
                        "The field '" + column.name + "' already exists.");
        }
        made.ordinal = static_cast<std::uint16_t>(definition.columns.size());
        definition.columns.push_back(std::move(made));
    }
    for (const IndexSchema& index : schema.indexes) AddIndex(index, definition);
    SortIndexNames(definition);
    return definition;
}

void RequireIndexable(const Definition& definition) {
    for (const LogicalIndex& index : definition.logicalIndexes) {
        for (const RealIndex::Part& part : definition.realIndexes[index.real].parts) {
            const Column& column = definition.columns[part.column];
            const auto obstacle = KeyObstacle(
                {.type = column.type, .ascending = part.ascending, .collation = column.collation},
                definition.version);
            if (obstacle) {
                ThrowUnsupported("The index '" + index.name + "' cannot be made: " + *obstacle +
                                 ".");
            }
        }
    }
}

void RequireRowFits(const Definition& definition, const Format& format) {
    RowBuilder builder;
    builder.Start(format, definition.shape);
    static_cast<void>(builder.Finish());
}

TableSchema SchemaOf(const std::string& name, const Definition& definition) {
    TableSchema schema;
    schema.name = name;
    schema.validationRule = definition.validationRule;
    schema.validationText = definition.validationText;
    for (const Column& column : definition.columns) {
        schema.columns.push_back(SchemaOfColumn(column, definition.version));
    }
    std::vector<const LogicalIndex*> order;
    for (const LogicalIndex& index : definition.logicalIndexes) order.push_back(&index);
    std::stable_sort(order.begin(), order.end(),
                     [](const LogicalIndex* left, const LogicalIndex* right) {
                         return left->number < right->number;
                     });
    for (const LogicalIndex* logical : order) {
        const RealIndex& real = definition.realIndexes[logical->real];
        IndexSchema index;
        index.name = logical->name;
        index.primary = logical->role == IndexRole::kPrimary;
        index.relation = logical->role == IndexRole::kRelation;
        index.unique = real.Unique() || index.primary;
        index.ignoreNulls = real.IgnoresNulls();
        index.required = real.Required() || index.primary;
        for (const RealIndex::Part& part : real.parts) {
            index.columns.push_back({definition.columns[part.column].name, part.ascending});
        }
        schema.indexes.push_back(std::move(index));
    }
    return schema;
}

}  // namespace jet
