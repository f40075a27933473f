// What the panels under the table of net value change show.
#pragma once

#include <QString>

#include <span>

namespace NVCTotals {

// The sum of a column, added in resource order: as singles when a table has just been loaded, as
// doubles when cells were typed.
[[nodiscard]] double Loaded(std::span<const float> values);
[[nodiscard]] double Typed(std::span<const double> values);

// Whole dollars with thousands separators.
[[nodiscard]] QString Text(double total);

}  // namespace NVCTotals
