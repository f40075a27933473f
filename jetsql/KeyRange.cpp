#include "jetsql/KeyRange.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "jet/convert.h"
#include "jetsql/Values.h"

namespace jetsql {

namespace {

using jet::ColumnType;
using jet::Value;

constexpr double kTenThousand = 10000;
// Within it a double holds each ten-thousandth of a currency amount apart from its neighbors.
constexpr double kMostExactCurrency = 4e11;

struct Limits {
    double least = 0;
    double most = 0;
};

// Of the whole numbers of a type.
std::optional<Limits> WholeLimits(ColumnType type) {
    switch (type) {
        case ColumnType::kByte:
            return Limits{0, 255};
        case ColumnType::kInteger:
            return Limits{-32768, 32767};
        case ColumnType::kLong:
            return Limits{std::numeric_limits<std::int32_t>::min(),
                          std::numeric_limits<std::int32_t>::max()};
        default:
            return std::nullopt;
    }
}

bool IsNumber(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

// Integers beyond 53 bits are rounded: a bound then lies at most a little outside.
double Number(sqlite3_value* value) {
    return sqlite3_value_double(value);
}

bool IsExact(sqlite3_value* value) {
    constexpr sqlite3_int64 kMost = sqlite3_int64{1} << 53;
    const sqlite3_int64 whole = sqlite3_value_int64(value);
    return sqlite3_value_type(value) != SQLITE_INTEGER || (whole <= kMost && whole >= -kMost);
}

Value WholeValue(double number) {
    return {static_cast<std::int32_t>(number)};
}

std::string Text(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// The bound moves outwards where the type cannot hold it, and at 0, because an index distinguishes
// -0 from 0 and SQLite does not.
template <typename Real>
Real Towards(double number, Bound bound) {
    constexpr Real kEndless = std::numeric_limits<Real>::infinity();
    auto real = static_cast<Real>(number);
    if (bound == Bound::kAbove && (real > number || number == 0)) {
        real = std::nextafter(real, -kEndless);
    }
    if (bound == Bound::kBelow && (real < number || number == 0)) {
        real = std::nextafter(real, kEndless);
    }
    return real;
}

// Writers do not agree on the keys of control characters and the soft hyphen, which have no weight.
bool HasOneKey(std::u16string_view text) {
    return std::ranges::none_of(text, [](char16_t unit) {
        return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0xAD;
    });
}

// A date that a text begins with, as days since 1899-12-30; nothing for another text.
std::optional<double> DayOf(const std::string& text) {
    int year = 0;
    int month = 0;
    int day = 0;
    int read = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d%n", &year, &month, &day, &read) != 3 || read != 10) {
        return std::nullopt;
    }
    const std::optional<double> days = DaysOf(year, month, day);
    return days;
}

// Texts of dates are compared as texts, with a time or without and rounded to the second, so the
// bound keeps a day's distance; before 1899-12-30 the hours of a day count backwards, which a day
// covers as well.
std::optional<Value> DateBound(sqlite3_value* value, Bound bound) {
    if (sqlite3_value_type(value) != SQLITE_TEXT) return std::nullopt;
    const std::optional<double> day = DayOf(Text(value));
    if (!day) return std::nullopt;
    return Value(jet::Date{bound == Bound::kAbove ? *day - 2 : *day + 2});
}

std::optional<Value> CurrencyBound(double number, Bound bound) {
    if (std::abs(number) > kMostExactCurrency) return std::nullopt;
    const double count = bound == Bound::kAbove ? std::floor(number * kTenThousand) - 1
                                                : std::ceil(number * kTenThousand) + 1;
    return Value(jet::Currency{static_cast<std::int64_t>(count)});
}

}  // namespace

std::optional<Value> BoundValue(ColumnType type, sqlite3_value* value, Bound bound, bool& isEmpty) {
    if (sqlite3_value_type(value) == SQLITE_NULL) {
        isEmpty = true;
        return std::nullopt;
    }
    if (type == ColumnType::kDate) return DateBound(value, bound);
    if (!IsNumber(value)) return std::nullopt;
    const double number = Number(value);
    if (const std::optional<Limits> limits = WholeLimits(type)) {
        const double whole = bound == Bound::kAbove ? std::floor(number) : std::ceil(number);
        isEmpty = isEmpty || (bound == Bound::kAbove && whole > limits->most) ||
                  (bound == Bound::kBelow && whole < limits->least);
        return WholeValue(std::clamp(whole, limits->least, limits->most));
    }
    switch (type) {
        case ColumnType::kSingle:
            return Value(Towards<float>(number, bound));
        case ColumnType::kDouble:
            return IsExact(value) ? std::optional<Value>(Towards<double>(number, bound))
                                  : std::nullopt;
        case ColumnType::kCurrency:
            return CurrencyBound(number, bound);
        default:
            return std::nullopt;
    }
}

std::optional<Value> EqualValue(ColumnType type, sqlite3_value* value, bool& isEmpty) {
    if (sqlite3_value_type(value) == SQLITE_NULL) {
        isEmpty = true;
        return std::nullopt;
    }
    if (type == ColumnType::kText || type == ColumnType::kGuid) {
        if (sqlite3_value_type(value) != SQLITE_TEXT) return std::nullopt;
        if (type == ColumnType::kText) {
            std::u16string text = jet::ToUtf16(Text(value));
            return HasOneKey(text) ? std::optional<Value>(std::move(text)) : std::nullopt;
        }
        const std::optional<jet::Guid> guid = GuidOf(Text(value));
        return guid ? std::optional<Value>(*guid) : std::nullopt;
    }
    if (!IsNumber(value) || !IsExact(value)) return std::nullopt;
    const double number = Number(value);
    if (const std::optional<Limits> limits = WholeLimits(type)) {
        isEmpty = isEmpty || number != std::floor(number) || number < limits->least ||
                  number > limits->most;
        return isEmpty ? std::nullopt : std::optional<Value>(WholeValue(number));
    }
    switch (type) {
        case ColumnType::kSingle:
            if (number == 0) return std::nullopt;  // -0 is another key, but equal
            isEmpty = isEmpty || static_cast<double>(static_cast<float>(number)) != number;
            return Value(static_cast<float>(number));
        case ColumnType::kDouble:
            return number == 0 ? std::nullopt : std::optional<Value>(number);
        case ColumnType::kCurrency: {
            if (std::abs(number) > kMostExactCurrency) return std::nullopt;
            const auto count = static_cast<std::int64_t>(std::llround(number * kTenThousand));
            isEmpty = isEmpty || static_cast<double>(count) / kTenThousand != number;
            return Value(jet::Currency{count});
        }
        default:
            return std::nullopt;
    }
}

KeyRange MakeKeyRange(const jet::TableSchema& table, const Plan& plan, sqlite3_value** values) {
    KeyRange range;
    if (plan.index < 0) return range;
    const jet::IndexSchema& index = table.indexes[plan.index];
    std::vector<Value> leading;
    bool isWhole = true;  // all columns so far have one value each
    const auto narrow = [&](ColumnType type, sqlite3_value* value, Bound side) {
        std::optional<Value> bound = BoundValue(type, value, side, range.empty);
        if (!isWhole || !bound) return;
        const bool ascending = index.columns[leading.size()].ascending;
        std::vector<Value>& end = (side == Bound::kAbove) == ascending ? range.lower : range.upper;
        end = leading;
        end.push_back(std::move(*bound));
    };
    for (const Condition& condition : plan.conditions) {
        const ColumnType type = table.columns[condition.column].type;
        sqlite3_value* value = values[condition.argument];
        if (condition.bound != Bound::kEqual) {
            narrow(type, value, condition.bound);
        } else if (HasExactEquality(type)) {
            std::optional<Value> equal = EqualValue(type, value, range.empty);
            isWhole = isWhole && equal.has_value();
            if (isWhole) leading.push_back(std::move(*equal));
        } else {
            narrow(type, value, Bound::kAbove);
            narrow(type, value, Bound::kBelow);
        }
    }
    if (range.lower.empty()) range.lower = leading;
    if (range.upper.empty()) range.upper = leading;
    return range;
}

}  // namespace jetsql
