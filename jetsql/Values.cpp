#include "jetsql/Values.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <type_traits>
#include <variant>

#include "jet/convert.h"

namespace jetsql {

namespace {

using jet::ColumnType;

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr double kTenThousand = 10000;

const char* DeclaredType(ColumnType type) {
    switch (type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong:
            return "INTEGER";
        case ColumnType::kCurrency:
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDecimal:
            return "REAL";
        case ColumnType::kText:
        case ColumnType::kMemo:
        case ColumnType::kDate:
        case ColumnType::kGuid:
            return "TEXT";
        default:
            return "BLOB";
    }
}

void GiveText(sqlite3_context* context, const std::string& text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

double DecimalNumber(const jet::Decimal& decimal) {
    // A text is read back with one rounding only.
    std::string digits;
    std::array<std::uint8_t, 16> rest = decimal.magnitude;
    bool isZero = false;
    while (!isZero) {
        unsigned remainder = 0;
        isZero = true;
        for (std::uint8_t& byte : rest) {
            const unsigned part = remainder * 256 + byte;
            byte = static_cast<std::uint8_t>(part / 10);
            remainder = part % 10;
            isZero = isZero && byte == 0;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + remainder));
    }
    const std::string text =
        (decimal.negative ? "-" : "") + digits + "e-" + std::to_string(decimal.scale);
    return std::stod(text);
}

void Give(sqlite3_context* context, const jet::Value& value) {
    std::visit(
        [&](const auto& held) {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>) {
                sqlite3_result_null(context);
            } else if constexpr (std::is_same_v<Held, bool>) {
                sqlite3_result_int(context, held ? 1 : 0);
            } else if constexpr (std::is_same_v<Held, std::int32_t>) {
                sqlite3_result_int(context, held);
            } else if constexpr (std::is_arithmetic_v<Held>) {
                sqlite3_result_double(context, held);
            } else if constexpr (std::is_same_v<Held, jet::Currency>) {
                sqlite3_result_double(context,
                                      static_cast<double>(held.tenThousandths) / kTenThousand);
            } else if constexpr (std::is_same_v<Held, jet::Date>) {
                GiveText(context, DateText(held.days));
            } else if constexpr (std::is_same_v<Held, std::u16string>) {
                GiveText(context, jet::ToUtf8(held));
            } else if constexpr (std::is_same_v<Held, jet::Guid>) {
                GiveText(context, LowerGuidText(held));
            } else if constexpr (std::is_same_v<Held, jet::Decimal>) {
                sqlite3_result_double(context, DecimalNumber(held));
            } else {
                sqlite3_result_blob64(context, held.data(), held.size(), SQLITE_TRANSIENT);
            }
        },
        value.Get());
}

}  // namespace

void GiveResult(sqlite3_context* context, const jet::Recordset& records, jet::FieldId field,
                ColumnType type) {
    // The commonest types are read without a value in between.
    switch (type) {
        case ColumnType::kLong: {
            std::int32_t number = 0;
            if (records.ReadLong(field, number)) {
                sqlite3_result_int(context, number);
            } else {
                sqlite3_result_null(context);
            }
            return;
        }
        case ColumnType::kSingle:
        case ColumnType::kDouble: {
            double number = 0;
            if (records.ReadDouble(field, number)) {
                sqlite3_result_double(context, number);
            } else {
                sqlite3_result_null(context);
            }
            return;
        }
        default:
            Give(context, records.Get(field));
    }
}

std::string Quoted(std::string_view name) {
    std::string quoted = "\"";
    for (const char character : name) {
        if (character == '"') quoted += '"';
        quoted += character;
    }
    return quoted + '"';
}

std::string Declaration(const jet::TableSchema& table, std::string_view name, bool withUnique) {
    std::string text = "CREATE TABLE " + std::string(name) + '(';
    const char* separator = "";
    for (const jet::ColumnSchema& column : table.columns) {
        text += separator + Quoted(column.name) + ' ' + DeclaredType(column.type);
        separator = ", ";
    }
    for (const jet::IndexSchema& index : table.indexes) {
        if (!index.primary && !(withUnique && index.unique)) continue;
        std::string columns;
        for (const jet::IndexColumn& column : index.columns) {
            columns += (columns.empty() ? "" : ", ") + Quoted(column.name);
        }
        text += (index.primary ? ", PRIMARY KEY (" : ", UNIQUE (") + columns + ')';
    }
    return text + ')';
}

std::string DateText(double days) {
    try {
        const double day = std::trunc(days);
        const double seconds = std::floor(std::abs(days - day) * double{kSecondsOfDay} + 0.5);
        // Midnight of the next day, where rounding comes to that.
        const bool isNext = seconds == double{kSecondsOfDay};
        const double whole = isNext ? day + 1 : day;
        const double fraction = isNext ? 0 : seconds / double{kSecondsOfDay};
        const jet::CalendarTime time =
            jet::ToCalendar({whole < 0 ? whole - fraction : whole + fraction});
        std::array<char, 64> text{};
        const int length =
            std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year,
                          time.month, time.day, time.hour, time.minute, time.second);
        return {text.data(), static_cast<std::size_t>(length)};
    } catch (const jet::Error&) {
        return {};  // no day of the calendar
    }
}

std::optional<double> DaysOf(int year, int month, int day) {
    try {
        return jet::ToDate({.year = year, .month = month, .day = day, .hour = 0}).days;
    } catch (const jet::Error&) {
        return std::nullopt;
    }
}

std::string LowerGuidText(const jet::Guid& guid) {
    std::string text = jet::GuidText(guid);
    for (char& digit : text) {
        digit = static_cast<char>(std::tolower(static_cast<unsigned char>(digit)));
    }
    return text;
}

std::optional<jet::Guid> GuidOf(std::string_view text) {
    try {
        const jet::Guid guid = jet::ParseGuid(text);
        return LowerGuidText(guid) == text ? std::optional(guid) : std::nullopt;
    } catch (const jet::Error&) {
        return std::nullopt;
    }
}

}  // namespace jetsql
