// Rounds a number to a count of significant digits, halves to the even neighbor.
//
// The power of ten that the digits are counted from never drops below 1, so numbers below 1 keep
// `digits` decimals. The sign survives a result of zero: -0.0004 to three digits is -0.0. Throws
// overflow (6) when the digits do not fit 32 bits.
#pragma once

double RoundSignificant(double number, int digits);
