#include "jet/convert.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>

#include "jet/error.h"
#include "os/out_of_memory.h"
#include "values/decimal.h"
#include "values/guid.h"
#include "values/text.h"

namespace jet {

namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = year_month_day(year(1899), month(12), day(30));
constexpr sys_days kFirstDay = year_month_day(year(100), month(1), day(1));
constexpr sys_days kLastDay = year_month_day(year(9999), month(12), day(31));
constexpr std::int64_t kDayMilliseconds = 86'400'000;

[[noreturn]] void ThrowOutOfRange() {
    throw Error(ErrorKind::kOverflow, "The date lies outside the years 100 to 9999.");
}

[[noreturn]] void ThrowNoDate() {
    throw Error(ErrorKind::kOverflow, "There is no such day or time of day.");
}

bool IsTimeOfDay(const CalendarTime& time) {
    const auto within = [](int number, int count) { return number >= 0 && number < count; };
    return within(time.hour, 24) && within(time.minute, 60) && within(time.second, 60) &&
           within(time.millisecond, 1000);
}

bool HyphenFollows(std::size_t bytes) {
    return bytes == 4 || bytes == 6 || bytes == 8 || bytes == 10;
}

std::optional<unsigned> HexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    return std::nullopt;
}

std::optional<Guid> ReadGuid(std::string_view text) {
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}') {
        text = text.substr(1, text.size() - 2);
    }
    constexpr std::size_t kLength = 36;
    if (text.size() != kLength) return std::nullopt;
    Guid guid;
    std::size_t at = 0;
    for (std::size_t i = 0; i < kGuidTextOrder.size(); ++i) {
        if (HyphenFollows(i) && text[at++] != '-') return std::nullopt;
        const auto high = HexDigit(text[at]);
        const auto low = HexDigit(text[at + 1]);
        if (!high || !low) return std::nullopt;
        guid.bytes[kGuidTextOrder[i]] = static_cast<std::byte>(*high << 4 | *low);
        at += 2;
    }
    return guid;
}

}  // namespace

void ToUtf8(std::u16string_view text, std::string& into) {
    return Guarded([&] {
        into.clear();
        AppendUtf8(text, into);
    });
}

std::string ToUtf8(std::u16string_view text) {
    std::string utf8;
    ToUtf8(text, utf8);
    return utf8;
}

std::u16string ToUtf16(std::string_view utf8) {
    return Guarded([&] { return WidenName(utf8); });
}

// Before the first day the time counts the other way: -1.25 is six o'clock of the day -1.
Date ToDate(const CalendarTime& time) {
    if (time.year < 100 || time.year > 9999) ThrowOutOfRange();
    if (time.month < 1 || time.day < 1) ThrowNoDate();
    const year_month_day date(year(time.year), month(static_cast<unsigned>(time.month)),
                              day(static_cast<unsigned>(time.day)));
    if (!date.ok() || !IsTimeOfDay(time)) ThrowNoDate();
    const auto days = static_cast<double>((sys_days(date) - kDayZero).count());
    const std::int64_t milliseconds =
        ((std::int64_t{time.hour} * 60 + time.minute) * 60 + time.second) * 1000 + time.millisecond;
    const double fraction =
        static_cast<double>(milliseconds) / static_cast<double>(kDayMilliseconds);
    return {days < 0 ? days - fraction : days + fraction};
}

CalendarTime ToCalendar(Date date) {
    // The two days around the range are looked at below, when the time has been rounded.
    constexpr double kFarthest = 3'000'000;
    if (!(std::abs(date.days) < kFarthest)) ThrowOutOfRange();
    const double whole = std::trunc(date.days);
    auto milliseconds = static_cast<std::int64_t>(
        std::llround(std::abs(date.days - whole) * static_cast<double>(kDayMilliseconds)));
    sys_days days = kDayZero + std::chrono::days(static_cast<int>(whole));
    if (milliseconds == kDayMilliseconds) {
        milliseconds = 0;
        days += std::chrono::days(1);
    }
    if (days < kFirstDay || days > kLastDay) ThrowOutOfRange();
    const year_month_day calendar(days);
    CalendarTime time;
    time.year = static_cast<int>(calendar.year());
    time.month = static_cast<int>(static_cast<unsigned>(calendar.month()));
    time.day = static_cast<int>(static_cast<unsigned>(calendar.day()));
    time.millisecond = static_cast<int>(milliseconds % 1000);
    time.second = static_cast<int>(milliseconds / 1000 % 60);
    time.minute = static_cast<int>(milliseconds / 60'000 % 60);
    time.hour = static_cast<int>(milliseconds / 3'600'000);
    return time;
}

std::string GuidText(const Guid& guid) {
    return Guarded([&] {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        std::string text = "{";
        for (std::size_t i = 0; i < kGuidTextOrder.size(); ++i) {
            if (HyphenFollows(i)) text.push_back('-');
            const auto byte = static_cast<unsigned>(guid.bytes[kGuidTextOrder[i]]);
            text.push_back(kDigits[byte >> 4]);
            text.push_back(kDigits[byte & 0xF]);
        }
        text.push_back('}');
        return text;
    });
}

Guid ParseGuid(std::string_view text) {
    const auto guid = ReadGuid(text);
    if (!guid) throw Error(ErrorKind::kTypeMismatch, "The text is no GUID.");
    return *guid;
}

Decimal ParseDecimal(std::string_view text) {
    return Guarded([&] {
        const std::u16string wide = WidenName(text);
        if (const auto decimal = ParseDecimal(wide)) return *decimal;
        const double number = Value(wide).AsDouble();  // which says so when it is no number
        const bool isNumber = std::isfinite(number);
        throw Error(isNumber ? ErrorKind::kOverflow : ErrorKind::kTypeMismatch,
                    isNumber ? "The number has more digits than a decimal holds."
                             : "The text is no number.");
    });
}

}  // namespace jet
