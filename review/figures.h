// Numbers as people read them.
#pragma once

#include <string>
#include <string_view>

#include "season/season.h"

namespace review {

// The decimal number that a person typed for this single: 12.3, not 12.3000002.
double Typed(float number);

// As typed, with commas between thousands: "-1,250", "0.25"; "infinite" or "no number" for what is
// none.
std::string Figure(float number);
std::string Figure(double number);
std::string Figure(const season::Single& number);  // null counts as 0

// With so many decimals, halves away from zero, commas between thousands: "-1,250.00".
std::string Fixed(float number, int decimals);
std::string Fixed(double number, int decimals);

// Rounded to three digits where it is long: "1,250", "1.25M", "3e38".
std::string ShortFigure(double number);

// "1 zone", "1,200 zones"
std::string Counted(std::size_t number, std::string_view word);

}  // namespace review
