#include "table/relations.h"

#include <algorithm>

#include "index/index_cursor.h"
#include "jet/error.h"
#include "table/table.h"

namespace jet {

namespace {

constexpr std::uint8_t kReferenced = 1;
constexpr std::uint8_t kReferencing = 2;
constexpr unsigned kCascades = 1;
// What a deletion does to the rows that refer to the deleted one. Both at once, or anything else,
// is no instruction, and so no row is deleted.
constexpr std::uint8_t kDeletes = 1;
constexpr std::uint8_t kSetsNull = 2;

bool IsRelation(const LogicalIndex& index) {
    return index.role == IndexRole::kRelation || index.partnerTable;
}

[[noreturn]] void ThrowUnknown(const Table& table, const LogicalIndex& relation) {
    throw Error(ErrorKind::kUnsupported,
                "The table '" + table.Name() + "' takes part in the relationship '" +
                    relation.name +
                    "', whose other side cannot be found, so it is not written "
                    "to.");
}

[[noreturn]] void ThrowRelated(const Table& other) {
    throw Error(ErrorKind::kRelatedRecords,
                "The record cannot be deleted or changed because the table '" + other.Name() +
                    "' includes related records.");
}

// What a row of the index's table is given to refer to something else, or to nothing.
std::shared_ptr<const RowValues> Redirection(const Table& table, const RealIndex& index,
                                             const std::optional<std::vector<Value>>& reference) {
    auto row = std::make_shared<RowValues>();
    row->values.resize(table.Def().columns.size());
    row->given.resize(row->values.size());
    for (std::size_t i = 0; i < index.parts.size(); ++i) {
        const std::size_t column = index.parts[i].column;
        if (reference) row->values[column] = (*reference)[i];
        row->given[column] = true;
    }
    return row;
}

bool HasGivenPart(const RealIndex& index, const RowValues& row) {
    return std::any_of(index.parts.begin(), index.parts.end(), [&](const RealIndex::Part& part) {
        return static_cast<bool>(row.given[part.column]);
    });
}

bool HaveSameKey(const TableIndex& index, const std::vector<Value>& left,
                 const std::vector<Value>& right) {
    Key keys[2];
    index.MakeSearchKey(left, keys[0]);
    index.MakeSearchKey(right, keys[1]);
    return keys[0] == keys[1];
}

}  // namespace

Relations::Side Relations::PartnerOf(const LogicalIndex& relation) const {
    Table* other = family_ == nullptr ? nullptr : family_->TableAt(relation.partnerTable);
    if (other == nullptr || relation.role != IndexRole::kRelation) ThrowUnknown(*table_, relation);
    const auto& candidates = other->Def().logicalIndexes;
    const auto partner =
        std::find_if(candidates.begin(), candidates.end(), [&](const LogicalIndex& candidate) {
            return candidate.role == IndexRole::kRelation && candidate.number == relation.partner &&
                   candidate.side != relation.side && candidate.partnerTable == table_->Def().page;
        });
    if (partner == candidates.end()) ThrowUnknown(*table_, relation);
    const TableIndex& index = *other->Indexes()[partner->real];
    const RealIndex& own = table_->Def().realIndexes[relation.real];
    if (index.Obstacle() || own.unknownPart || own.parts.size() != index.Real().parts.size()) {
        ThrowUnknown(*table_, relation);
    }
    return {other, &index};
}

void Relations::RequireKnown() const {
    for (const LogicalIndex& index : table_->Def().logicalIndexes) {
        if (IsRelation(index)) static_cast<void>(PartnerOf(index));
    }
}

std::optional<std::vector<Value>> Relations::Reference(const LogicalIndex& relation,
                                                       const ColumnValue& value) const {
    std::vector<Value> reference;
    for (const RealIndex::Part& part : table_->Def().realIndexes[relation.real].parts) {
        reference.push_back(value(part.column));
        if (reference.back().IsNull()) return std::nullopt;
    }
    return reference;
}

std::vector<RowId> Relations::RowsOf(const Side& side, const std::vector<Value>& reference) const {
    Key key;
    side.index->MakeSearchKey(reference, key);
    return RowsBeginningWith(side.index->Tree(), key);
}

void Relations::RequireParents(const RowValues& row, bool isNew, const ColumnValue& value) const {
    for (const LogicalIndex& relation : table_->Def().logicalIndexes) {
        if (!IsRelation(relation) || relation.side != kReferencing) continue;
        if (!isNew && !HasGivenPart(table_->Def().realIndexes[relation.real], row)) continue;
        const auto reference = Reference(relation, value);
        if (!reference) continue;
        const Side parent = PartnerOf(relation);
        if (!RowsOf(parent, *reference).empty()) continue;
        throw Error(ErrorKind::kNoRelatedRecord,
                    "The record cannot be added or changed because a related record is required "
                    "in the table '" +
                        parent.table->Name() + "'.");
    }
}

void Relations::CascadeDelete(RowId row, const ColumnValue& old, std::vector<TableRow>& deletions,
                              std::vector<RowChange>& releases) const {
    for (const LogicalIndex& relation : table_->Def().logicalIndexes) {
        if (!IsRelation(relation) || relation.side != kReferenced) continue;
        const auto reference = Reference(relation, old);
        if (!reference) continue;
        const Side child = PartnerOf(relation);
        const auto nulls = Redirection(*child.table, child.index->Real(), std::nullopt);
        for (const RowId found : RowsOf(child, *reference)) {
            const TableRow place = {child.table, found};
            if (place == TableRow{table_, row}) continue;
            if (relation.cascadeDeletes == kDeletes) {
                deletions.push_back(place);
            } else if (relation.cascadeDeletes == kSetsNull) {
                releases.push_back({place, nulls});
            } else {
                ThrowRelated(*child.table);
            }
        }
    }
}

void Relations::CascadeUpdate(const RowValues& given, const ColumnValue& old,
                              const ColumnValue& now, std::vector<RowChange>& changes) const {
    for (const LogicalIndex& relation : table_->Def().logicalIndexes) {
        const RealIndex& own = table_->Def().realIndexes[relation.real];
        if (!IsRelation(relation) || relation.side != kReferenced || !HasGivenPart(own, given)) {
            continue;
        }
        const auto before = Reference(relation, old);
        const auto after = Reference(relation, now);
        if (!before || before == after) continue;
        const Side child = PartnerOf(relation);
        const bool cascades = (relation.cascadeUpdates & kCascades) != 0;
        // Only spelled in another way, it is still what the others refer to.
        if (!cascades && after && HaveSameKey(*child.index, *before, *after)) continue;
        const auto values = Redirection(*child.table, child.index->Real(), after);
        for (const RowId found : RowsOf(child, *before)) {
            if (!cascades || !after) ThrowRelated(*child.table);
            changes.push_back({{child.table, found}, values});
        }
    }
}

}  // namespace jet
