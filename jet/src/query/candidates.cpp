#include "query/candidates.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "index/index_cursor.h"
#include "values/text.h"

namespace jet {

namespace {

// Whether `number` is one that a column of this type can hold.
bool IsWithin(ColumnType type, double number) {
    const auto lies = [number](double low, double high) { return number >= low && number <= high; };
    if (number != std::floor(number)) return false;
    switch (type) {
        case ColumnType::kByte:
            return lies(0, std::numeric_limits<std::uint8_t>::max());
        case ColumnType::kInteger:
            return lies(std::numeric_limits<std::int16_t>::min(),
                        std::numeric_limits<std::int16_t>::max());
        case ColumnType::kLong:
            return lies(std::numeric_limits<std::int32_t>::min(),
                        std::numeric_limits<std::int32_t>::max());
        default:
            return false;
    }
}

// The beginning of the keys of all rows that satisfy the condition. Nothing for types whose keys
// can differ where the values count as equal: fractions have two zeros, for one.
std::optional<Key> KeyStart(const Table& table, const TableIndex& index,
                            const Condition& condition) {
    const KeyColumn& column = index.KeyColumns().front();
    const Version version = table.Def().version;
    Key start;
    if (const auto* text = std::get_if<std::u16string>(&condition.literal.Get())) {
        if (column.type != ColumnType::kText) return std::nullopt;
        AppendKeyStart(start, column, *text, version);
        return start;
    }
    const auto* whole = std::get_if<std::int32_t>(&condition.literal.Get());
    const auto* fraction = std::get_if<double>(&condition.literal.Get());
    if (whole == nullptr && fraction == nullptr) return std::nullopt;
    const double number = condition.literal.AsDouble();
    if (!IsWithin(column.type, number)) return std::nullopt;
    AppendKeyPart(start, column, static_cast<std::int32_t>(number), version);
    return start;
}

std::optional<std::vector<RowId>> RowsByIndex(const Table& table, const Condition& condition) {
    if (condition.comparison != Operator::kEqual || condition.literal.IsNull()) return std::nullopt;
    const auto column = table.Def().FindColumn(WidenName(condition.field));
    for (const auto& index : table.Indexes()) {
        const auto& parts = index->Real().parts;
        if (index->Obstacle() || parts.empty() || parts.front().column != column) continue;
        const auto start = KeyStart(table, *index, condition);
        if (!start) continue;
        std::vector<RowId> rows = RowsBeginningWith(index->Tree(), *start);
        std::sort(rows.begin(), rows.end());
        rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
        return rows;
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::vector<RowId>> RowsByIndex(const Table& table, const Query& query) {
    for (const Condition& condition : query.conditions) {
        if (auto rows = RowsByIndex(table, condition)) return rows;
    }
    return std::nullopt;
}

}  // namespace jet
