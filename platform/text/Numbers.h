// The number rules, without windows: reading typed numbers and showing stored ones.
#pragma once

#include <QString>

#include <cstdint>

namespace platform {

// The leading number of a text: blanks, tabs and line ends are passed over, then sign, digits, one
// decimal point and an exponent (E or D) are taken as far as they go. "12abc" is 12, "1,000" is 1,
// "" and "abc" are 0; "&H" and "&O" introduce hexadecimal and octal. Never throws; a number too
// large for a double throws kOverflow.
double Val(const QString& text);
// Whether the whole text is one decimal number that Val reads: no separators, no currency sign.
bool IsPlainNumber(const QString& text);

// The whole text as a number, thousands separators and a currency sign allowed; kTypeMismatch when
// it is not one.
double CDbl(const QString& text);
float CSng(const QString& text);
// The nearest whole number, halves to the even neighbour; kOverflow outside 32 bits.
std::int32_t CLng(double value);
// A double as the nearest single; kOverflow beyond the singles' range.
float ToSingle(double value);

// A number as the shortest text that reads back as the same number: no exponent where 9 (single) or
// 15 (double) digits before the point do, "." as the decimal point, a leading zero dropped nowhere
// ("0.5"), no trailing zeros.
QString Str(float value);
QString Str(double value);
QString Str(std::int32_t value);

// Shows a number by a pattern of digits: "$#,0", "#,#.00", "$#,#", "#.00", "#.0", "#", "". "#"
// shows no zero, so that 0 by "#.00" is ".00" and by "$#,#" is "$". Rounds halves away from zero in
// decimal, groups thousands with ",", puts the minus sign first ("-$1,234").
QString Format(double value, const QString& pattern);

}  // namespace platform
