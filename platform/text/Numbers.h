// The number rules, without windows: reading typed numbers and showing stored ones.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace platform {

// The leading number of a text. This is the one rule by which a number that was typed is read in
// every grid and dialog (CDbl below lists the two that are refused instead where they are no
// number as a whole); what is stored is what it gives.
//
// Blanks, tabs and line ends are passed over wherever they stand. Then a sign, digits, one decimal
// point with digits behind it, and an exponent (E or D) are taken as far as they go; whatever
// follows is left out. There are no thousands separators, no currency signs and no digits of other
// scripts: such a character ends the number. A text that does not begin with a number is 0. "&H"
// and "&O" introduce whole numbers in hexadecimal and octal, without a sign. Never throws but
// kOverflow, for a number too large for a double; one too small for it is 0.
//
//   typed      whole number or leading one
//   "12abc"    leading 12
//   "1,000"    leading 1
//   "1 250"    leading 1250
//   "12,5"     leading 12
//   "1.2.3"    leading 1.2
//   "1e"       leading 1
//   "1-2"      leading 1
//   "&H10"     leading 16
//   "&o17"     leading 15
//   "$5"       leading 0
//   "(75)"     leading 0
//   "$-40"     leading 0
//   "-"        leading 0
//   "- 12"     leading -12
//   "."        leading 0
//   "e3"       leading 0
//   "abc"      leading 0
//   ""         leading 0
//   "\u0663"   leading 0
//   "\u22125"  leading 0
//   "12"       whole 12
//   " 7 "      whole 7
//   ".5"       whole 0.5
//   "5."       whole 5
//   "+3"       whole 3
//   "-0"       whole 0
//   "0012"     whole 12
//   "1e3"      whole 1000
//   "1D-2"     whole 0.01
//   "1e-400"   whole 0
double Val(const QString& text);
// Whether the whole text is one decimal number that Val reads, blanks around it left out. What such
// a text shows is what is stored.
bool IsPlainNumber(const QString& text);

// The whole text as a number, thousands separators and a currency sign allowed; kTypeMismatch when
// it is not one. For the two texts that are taken whole or refused with a sentence: the place of a
// resource, and a cost that is pasted into the dialog that adds one.
double CDbl(const QString& text);
float CSng(const QString& text);
// The nearest whole number, halves to the even neighbor; kOverflow outside 32 bits.
std::int32_t CLng(double value);
// A double as the nearest single; kOverflow beyond the singles' range.
float ToSingle(double value);

// A typed number as the file holds it, the nearest single; nothing when it is too large for one.
std::optional<float> TypedSingle(const QString& text);
// The sentence about it: "The number "9e99" is too large."
QString TooLarge(const QString& text);

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
