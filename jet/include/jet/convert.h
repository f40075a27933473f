// Text, dates, decimals and GUIDs as other code has them: UTF-8, calendar days, and the usual
// notation.
#pragma once

#include <string>
#include <string_view>

#include "jet/value.h"

namespace jet {

// What is no character - a byte sequence that is not UTF-8, half of a surrogate pair - becomes
// U+FFFD.
std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view utf8);
// The same into memory that is used again.
void ToUtf8(std::u16string_view text, std::string& into);

// A day of the Gregorian calendar and a time of day, without a time zone.
struct CalendarTime {
    int year = 1899;  // 100 to 9999
    int month = 12;   // 1 to 12
    int day = 30;     // 1 to the last of the month
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    bool operator==(const CalendarTime&) const = default;
};

// kOverflow for a day that is none or lies outside the years that the format knows.
Date ToDate(const CalendarTime& time);
// To the nearest millisecond. kOverflow likewise.
CalendarTime ToCalendar(Date date);

// "{00112233-4455-6677-8899-AABBCCDDEEFF}".
std::string GuidText(const Guid& guid);
// The same with or without braces, in either case of letters. kTypeMismatch for anything else.
Guid ParseGuid(std::string_view text);

// The number that a text like "-12.50" or "1.25e3" stands for, exactly; Value::AsText is the way
// back. kTypeMismatch for anything else, kOverflow for more digits than a decimal holds.
Decimal ParseDecimal(std::string_view text);

}  // namespace jet
