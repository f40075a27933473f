#include "worksheets/nvc/NVCGridTable.h"

#include <cmath>
#include <utility>

#include "platform/text/Numbers.h"
#include "worksheets/nvc/NVCTotals.h"

using platform::GridTable;

namespace worksheets {

using ZoneKeys::kFilLevels;
using ZoneKeys::kResources;

namespace {

constexpr int kNameLength = 50;
constexpr int kValueLength = 10;

// A loaded value adds to the total the decimals that it shows: 0.7, and not 0.699999988.
NVCGridTable::Cell Loaded(float value) {
    const QString text = platform::Str(value);
    return {.text = text, .value = value, .number = platform::Val(text)};
}

}  // namespace

std::size_t NVCGridTable::Position(int row, int col) {
    return std::size_t(row - 1) * kFilLevels + std::size_t(col - 1);
}

void NVCGridTable::Show(std::unique_ptr<c34NVCTable> table) {
    table_ = std::move(table);
    for (int resource = 1; resource <= kResources; ++resource) {
        for (int level = 1; level <= kFilLevels; ++level) {
            cells_[Position(resource, level)] = Loaded(table_->Value(resource, level));
        }
    }
    takesTyping_ = true;
}

double NVCGridTable::LoadedTotal(int level) const {
    std::array<float, kResources> values{};
    for (int resource = 1; resource <= kResources; ++resource) {
        values[std::size_t(resource - 1)] = table_ ? table_->NVCCellValue(resource, level) : 0;
    }
    return NVCTotals::Loaded(values);
}

double NVCGridTable::ShownTotal(int level) const {
    std::array<double, kResources> values{};
    for (int resource = 1; resource <= kResources; ++resource) {
        values[std::size_t(resource - 1)] = Value(resource, level);
    }
    return NVCTotals::Typed(values);
}

double NVCGridTable::Value(int row, int level) const {
    return cells_[Position(row, level)].number;
}

NVCGridTable::Cell NVCGridTable::Held(int row, int col) const {
    if (col == kName) {
        return {.text = names_.Name(row)};
    }
    return cells_[Position(row, col)];
}

void NVCGridTable::Put(int row, int col, const Cell& cell) {
    if (col == kName) {
        names_.SetName(row, cell.text);
        return;
    }
    if (!table_) {
        return;
    }
    table_->NVCCellValue(row, col, cell.value);
    cells_[Position(row, col)] = cell;
}

QString NVCGridTable::Text(int row, int col) const {
    return Held(row, col).text;
}

QString NVCGridTable::Stored(int row, int col) const {
    return col == kName || !table_ ? Text(row, col) : platform::Str(table_->Value(row, col));
}

GridTable::Takes NVCGridTable::CellTakes(int /*row*/, int col) const {
    if (!takesTyping_ || !table_) {
        return Takes::kNothing;
    }
    return col == kName ? Takes::kText : Takes::kNumber;
}

int NVCGridTable::MaxLength(int col) const {
    return col == kName ? kNameLength : kValueLength;
}

GridTable::Answer NVCGridTable::Offer(int row, int col, const QString& typed) {
    if (CellTakes(row, col) == Takes::kNothing) {
        return {.kind = Answer::Kind::kRefused, .text = {}};
    }
    action_.Remember(row, col, Held(row, col));
    const Cell* before = action_.Before(row, col);
    const std::optional<float> value = platform::TypedSingle(typed);
    if (col == kName) {
        names_.SetName(row, typed);
    } else if (before != nullptr && (!value || typed == before->text)) {
        // What the cell showed need not read as what it held.
        Put(row, col, *before);
    } else if (value) {
        Put(row, col, {.text = typed, .value = *value, .number = platform::Val(typed)});
    }
    if (col != kName && !value) {
        return {.kind = Answer::Kind::kRefused, .text = platform::TooLarge(typed)};
    }
    return {};
}

void NVCGridTable::BeginAction(const QString& name) {
    action_.Begin(name);
}

void NVCGridTable::EndAction() {
    const Changes changes = action_.End([this](int row, int col) { return Held(row, col); });
    if (done_) {
        done_(action_.Name(), changes);
    }
}

}  // namespace worksheets
