// Exact decimal numbers: arithmetic by tens, and their order.
#pragma once

#include <optional>
#include <string_view>

#include "jet/value.h"

namespace jet {

// Multiplies the magnitude by ten; false when it does not fit any more.
bool TimesTen(Decimal& decimal);
// Divides the magnitude by ten and gives the last digit.
unsigned DivideByTen(Decimal& decimal);
void AddOne(Decimal& decimal);
enum class Halves { kToEven, kAwayFromZero };
// The nearest value with so many digits behind the point, and never a negative zero; false when it
// does not fit.
bool Rescale(Decimal& decimal, int scale, Halves halves);
// Digits of the magnitude, 0 for zero.
int DigitCount(Decimal decimal);

// A number as the engine writes numbers, with an exponent or without; nothing for any other text
// and for a number with too many digits. One that lies too near to zero becomes the nearest to it.
std::optional<Decimal> ParseDecimal(std::u16string_view text);

// Negative, zero, positive; scales do not matter.
int CompareDecimals(const Decimal& left, const Decimal& right);

}  // namespace jet
