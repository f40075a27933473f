// The numbers 1 to N in front of the rows of a list: the row that a typed one stands for.
#pragma once

#include <QString>

#include <optional>

namespace RowOrder {

// The place that a typed number stands for in a list of `count` rows: rounded to a whole number
// (halves to the even neighbor) and held within 1 to `count`. Nothing when the text is no number.
[[nodiscard]] std::optional<int> Place(const QString& text, int count);

// The place for a new row in a list of `count` rows, held within 1 to `count` + 1: the text's
// leading number, rounded in the same way.
[[nodiscard]] int NewPlace(const QString& text, int count);

}  // namespace RowOrder
