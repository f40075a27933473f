#include "worksheets/cost/CostGridTable.h"

#include <QCoreApplication>

#include <optional>
#include <utility>

#include "platform/text/Numbers.h"
#include "worksheets/cost/LowerBound.h"

using platform::GridTable;

namespace worksheets {

using ZoneKeys::kCostClasses;

namespace {

constexpr int kToLength = 9;
constexpr int kCostLength = 7;

QString ShownNumber(int col, float value) {
    return col == CostGridTable::kTo && !(value > 0) ? QString() : platform::Str(value);
}

}  // namespace

void CostGridTable::Show(std::unique_ptr<c35AACTable> table) {
    table_ = std::move(table);
    from_ = {};
    from_[0] = QStringLiteral("0");
}

void CostGridTable::SetNextLowerBound(int row, float top) {
    from_.at(std::size_t(row - 1)) = NextLowerBound(top);
}

float CostGridTable::Value(int row, int col) const {
    if (!table_) {
        return 0;
    }
    return col == kTo ? table_->Class(row).topSize : table_->Class(row).cost;
}

void CostGridTable::Put(int row, int col, float value) {
    if (!table_) {
        return;
    }
    if (col == kTo) {
        table_->TopSize(row, value);
    } else {
        table_->Cost(row, value);
    }
}

QString CostGridTable::Text(int row, int col) const {
    if (col == kFrom) {
        return from_.at(std::size_t(row - 1));
    }
    return table_ ? ShownNumber(col, Value(row, col)) : QString();
}

// A size that is not shown, below 0, is reported all the same.
QString CostGridTable::Stored(int row, int col) const {
    const bool hidden = col == kTo && Value(row, col) < 0;
    return hidden ? platform::Str(Value(row, col)) : Text(row, col);
}

QString CostGridTable::RowName(int row) const {
    return QCoreApplication::translate("CostGridTable", "Class %1").arg(row);
}

GridTable::Takes CostGridTable::CellTakes(int /*row*/, int col) const {
    return col == kFrom || !table_ ? Takes::kNothing : Takes::kNumber;
}

int CostGridTable::MaxLength(int col) const {
    return col == kCost ? kCostLength : kToLength;
}

GridTable::Answer CostGridTable::Offer(int row, int col, const QString& typed) {
    if (CellTakes(row, col) == Takes::kNothing) {
        return {.kind = Answer::Kind::kRefused, .text = {}};
    }
    action_.Remember(row, col, Value(row, col));
    const float* before = action_.Before(row, col);
    const std::optional<float> value = platform::TypedSingle(typed);
    if (before != nullptr && (!value || typed == ShownNumber(col, *before))) {
        // What the cell showed need not read as what it held.
        Put(row, col, *before);
    } else if (value) {
        Put(row, col, *value);
    }
    if (!value) {
        return {.kind = Answer::Kind::kRefused, .text = platform::TooLarge(typed)};
    }
    const QString shown = Text(row, col);
    const bool asTyped = shown == typed || typed.trimmed().isEmpty();
    return asTyped ? Answer{} : Answer{.kind = Answer::Kind::kChanged, .text = shown};
}

void CostGridTable::BeginAction(const QString& name) {
    action_.Begin(name);
}

void CostGridTable::EndAction() {
    const Changes changes = action_.End([this](int row, int col) { return Value(row, col); });
    if (done_) {
        done_(action_.Name(), changes);
    }
}

}  // namespace worksheets
