#include "jetsql/Plan.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace jetsql {

namespace {

using jet::ColumnType;

constexpr double kEqualShare = 0.01;  // of the records, for each leading column that is not unique
constexpr double kBoundShare = 0.25;
constexpr double kSeekCost = 3;  // in records of a scan

int ColumnNamed(const jet::TableSchema& table, const std::string& name) {
    const auto found = std::ranges::find(table.columns, name, &jet::ColumnSchema::name);
    return found == table.columns.end() ? -1 : static_cast<int>(found - table.columns.begin());
}

const Condition* Find(const std::vector<Condition>& conditions, int column, Bound bound) {
    const auto found = std::ranges::find_if(conditions, [&](const Condition& condition) {
        return condition.column == column && condition.bound == bound;
    });
    return found == conditions.end() ? nullptr : &*found;
}

// Whether walking the index gives the asked order, when its first `fixed` columns have one value
// each; gives the direction.
std::optional<bool> Direction(const jet::TableSchema& table, const jet::IndexSchema& index,
                              std::size_t fixed, const std::vector<Order>& order) {
    std::optional<bool> backwards;
    std::size_t at = fixed;
    for (const Order& term : order) {
        if (at == index.columns.size()) return std::nullopt;
        const jet::IndexColumn& column = index.columns[at++];
        const int position = ColumnNamed(table, column.name);
        if (position != term.column || !HasSameOrder(table.columns[position].type)) {
            return std::nullopt;
        }
        const bool against = column.ascending == term.descending;
        if (backwards && *backwards != against) return std::nullopt;
        backwards = against;
    }
    return backwards;
}

// The conditions that this index can serve: equalities on its leading columns, then bounds on the
// next one.
void AddConditions(Plan& plan, const jet::TableSchema& table, const jet::IndexSchema& index,
                   const std::vector<Condition>& conditions) {
    for (const jet::IndexColumn& column : index.columns) {
        const int position = ColumnNamed(table, column.name);
        if (position < 0) return;
        const ColumnType type = table.columns[position].type;
        const Condition* equal = Find(conditions, position, Bound::kEqual);
        if (equal != nullptr && HasSameEquality(type)) {
            plan.conditions.push_back(*equal);
            if (HasExactEquality(type)) continue;
            return;
        }
        if (HasSameRange(type)) {
            for (const Bound bound : {Bound::kAbove, Bound::kBelow}) {
                if (const Condition* found = Find(conditions, position, bound)) {
                    plan.conditions.push_back(*found);
                }
            }
        }
        return;
    }
}

// The leading columns that have one value each.
std::size_t Equalities(const Plan& plan, const jet::TableSchema& table) {
    return static_cast<std::size_t>(
        std::ranges::count_if(plan.conditions, [&table](const Condition& condition) {
            return condition.bound == Bound::kEqual &&
                   HasExactEquality(table.columns[condition.column].type);
        }));
}

void Estimate(Plan& plan, const jet::IndexSchema& index, std::size_t equal, double rows) {
    const bool one = (index.unique || index.primary) && equal == index.columns.size();
    double found = rows * std::pow(kEqualShare, static_cast<double>(equal)) *
                   std::pow(kBoundShare, static_cast<double>(plan.conditions.size() - equal));
    if (one) found = std::min(found, 1.0);
    plan.rows = std::max(found, 1.0);
    // Records of an index lie scattered over the table's pages.
    plan.cost = kSeekCost + plan.rows * (plan.conditions.empty() ? 2 : 1.2);
}

Plan PlanFor(const jet::TableSchema& table, int position, double rows,
             const std::vector<Condition>& conditions, const std::vector<Order>& order) {
    const jet::IndexSchema& index = table.indexes[position];
    Plan plan;
    plan.index = position;
    AddConditions(plan, table, index, conditions);
    const std::size_t equal = Equalities(plan, table);
    // An index may leave out records without any value; a condition on its first column rules these
    // out in any case.
    const std::optional<bool> direction = !index.ignoreNulls || !plan.conditions.empty()
                                              ? Direction(table, index, equal, order)
                                              : std::nullopt;
    plan.ordered = direction.has_value();
    plan.backwards = direction.value_or(false);
    Estimate(plan, index, equal, rows);
    return plan;
}

}  // namespace

bool HasSameRange(ColumnType type) {
    switch (type) {
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong:
        case ColumnType::kCurrency:
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate:
            return true;
        default:
            return false;
    }
}

bool HasSameOrder(ColumnType type) {
    return type == ColumnType::kByte || type == ColumnType::kInteger || type == ColumnType::kLong ||
           type == ColumnType::kCurrency;
}

bool HasSameEquality(ColumnType type) {
    return HasSameRange(type) || type == ColumnType::kText || type == ColumnType::kGuid;
}

bool HasExactEquality(ColumnType type) {
    return HasSameEquality(type) && type != ColumnType::kDate;
}

Plan MakePlan(const jet::TableSchema& table, double rows, const std::vector<Condition>& conditions,
              const std::vector<Order>& order) {
    Plan best;
    best.rows = std::max(rows, 1.0);
    best.cost = best.rows;
    const double sorting = order.empty() ? 0 : best.rows * 2;
    for (int position = 0; position < static_cast<int>(table.indexes.size()); ++position) {
        const Plan plan = PlanFor(table, position, rows, conditions, order);
        if (plan.conditions.empty() && !plan.ordered) continue;
        if (plan.cost + (plan.ordered ? 0 : sorting) < best.cost + (best.ordered ? 0 : sorting)) {
            best = plan;
        }
    }
    return best;
}

std::string Plan::Text(const jet::TableSchema& table) const {
    std::ostringstream words;
    std::ostringstream numbers;
    numbers << index << ' ' << backwards;
    if (index < 0) {
        words << "scan";
    } else {
        words << (conditions.empty() ? "walk " : "seek ") << table.indexes[index].name;
    }
    const char* separator = " (";
    for (const Condition& condition : conditions) {
        constexpr const char* kSigns[] = {"=?", ">?", "<?"};
        const auto bound = static_cast<int>(condition.bound);
        words << separator << table.columns[condition.column].name << kSigns[bound];
        numbers << ' ' << condition.column << ' ' << bound;
        separator = " AND ";
    }
    words << (conditions.empty() ? "" : ")") << (backwards ? " backwards" : "");
    return words.str() + " # " + numbers.str();
}

Plan Plan::FromText(const std::string& text) {
    std::istringstream numbers(text.substr(text.rfind('#') + 1));
    Plan plan;
    numbers >> plan.index >> plan.backwards;
    Condition condition;
    int bound = 0;
    while (numbers >> condition.column >> bound) {
        condition.bound = static_cast<Bound>(bound);
        condition.argument = static_cast<int>(plan.conditions.size());
        plan.conditions.push_back(condition);
    }
    return plan;
}

}  // namespace jetsql
