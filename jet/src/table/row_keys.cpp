#include "table/row_keys.h"

#include <algorithm>

#include "jet/error.h"

namespace jet {

namespace {

constexpr unsigned kKnownFlags = kUniqueIndex | kIgnoreNullsIndex | kRequiredIndex;

bool IsPrimary(const Definition& definition, std::size_t real) {
    return std::any_of(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                       [real](const LogicalIndex& index) {
                           return index.real == real && index.role == IndexRole::kPrimary;
                       });
}

}  // namespace

TableIndex::TableIndex(Pager& pager, const Definition& definition, std::size_t real)
    : definition_(&definition),
      real_(real),
      tree_(pager, definition.page, definition.realIndexes[real].root,
            UsageMap(pager, definition.realIndexes[real].map)),
      unique_(Real().Unique() || IsPrimary(definition, real)),
      required_(Real().Required() || IsPrimary(definition, real)) {
    const RealIndex& index = Real();
    if (index.unknownPart ||
        (index.flags & ~(kKnownFlags | pager.FileFormat().indexFlagAlways)) != 0) {
        obstacle_ = "its definition says something that is not known here";
    }
    for (const RealIndex::Part& part : index.parts) {
        const Column& column = definition.columns[part.column];
        keyColumns_.push_back(
            {.type = column.type, .ascending = part.ascending, .collation = column.collation});
        const auto obstacle = KeyObstacle(keyColumns_.back(), definition.version);
        if (obstacle && !obstacle_) obstacle_ = "field '" + column.name + "': " + *obstacle;
    }
    // The system's own tables have primary keys with empty columns.
    if (definition.system) required_ = Real().Required();
}

std::string TableIndex::Name() const {
    for (const LogicalIndex& index : definition_->logicalIndexes) {
        if (index.real == real_) return index.name;
    }
    return "?";
}

void TableIndex::MakeRowKey(const ColumnValue& value, RowKey& into) const {
    into.key.clear();
    into.anyNull = false;
    bool notNull = false;
    for (std::size_t i = 0; i < keyColumns_.size(); ++i) {
        const Value part = value(Real().parts[i].column);
        (part.IsNull() ? into.anyNull : notNull) = true;
        AppendKeyPart(into.key, keyColumns_[i], part, definition_->version);
    }
    into.allNull = !notNull;
    into.entered = !(into.allNull && Real().IgnoresNulls());
}

void TableIndex::MakeSearchKey(std::span<const Value> values, Key& into) const {
    if (values.empty() || values.size() > keyColumns_.size()) {
        throw Error(ErrorKind::kTypeMismatch,
                    "The index '" + Name() + "' cannot be searched by this number of values.");
    }
    into.clear();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column& column = definition_->columns[Real().parts[i].column];
        AppendKeyPart(into, keyColumns_[i], ConvertForSearch(column, values[i]),
                      definition_->version);
    }
}

}  // namespace jet
