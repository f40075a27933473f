#include "jetsql/Values.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>
#include <variant>

namespace jetsql {

namespace {

using jet::ColumnType;

constexpr std::int64_t kSecondsOfDay = 86400;
constexpr double kMostDays = 2958466;  // the end of the year 9999
constexpr double kTenThousand = 10000;
constexpr char32_t kReplacement = 0xFFFD;
// The order in which the bytes of a GUID are stored, as its text shows them.
constexpr std::array<int, 16> kGuidOrder{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

std::chrono::sys_days DayZero() {
    using namespace std::chrono;
    return sys_days{year{1899} / December / 30};
}

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
                GiveText(context, ToUtf8(held));
            } else if constexpr (std::is_same_v<Held, jet::Guid>) {
                GiveText(context, GuidText(held));
            } else if constexpr (std::is_same_v<Held, jet::Decimal>) {
                sqlite3_result_double(context, DecimalNumber(held));
            } else {
                sqlite3_result_blob64(context, held.data(), held.size(), SQLITE_TRANSIENT);
            }
        },
        value.Get());
}

void AppendCharacter(std::string& text, char32_t character) {
    const auto add = [&](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        add(character);
    } else if (character < 0x800) {
        add(0xC0 | character >> 6);
        add(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        add(0xE0 | character >> 12);
        add(0x80 | (character >> 6 & 0x3F));
        add(0x80 | (character & 0x3F));
    } else {
        add(0xF0 | character >> 18);
        add(0x80 | (character >> 12 & 0x3F));
        add(0x80 | (character >> 6 & 0x3F));
        add(0x80 | (character & 0x3F));
    }
}

bool IsLead(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool IsTrail(char16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
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
    using namespace std::chrono;
    if (!std::isfinite(days) || std::abs(days) > kMostDays) return {};
    const double day = std::trunc(days);
    const double fraction = std::abs(days - day);
    const auto second =
        static_cast<std::int64_t>(std::floor(fraction * double{kSecondsOfDay} + 0.5));
    const sys_days date = DayZero() + std::chrono::days{static_cast<int>(day)} +
                          std::chrono::days{static_cast<int>(second / kSecondsOfDay)};
    const year_month_day calendar{date};
    const std::int64_t time = second % kSecondsOfDay;
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d",
                                     int{calendar.year()}, unsigned{calendar.month()},
                                     unsigned{calendar.day()}, static_cast<int>(time / 3600),
                                     static_cast<int>(time / 60 % 60), static_cast<int>(time % 60));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<double> DaysOf(int year, int month, int day) {
    const std::chrono::year_month_day date{std::chrono::year{year},
                                           std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) return std::nullopt;
    return (std::chrono::sys_days{date} - DayZero()).count();
}

std::string GuidText(const jet::Guid& guid) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "{";
    for (std::size_t at = 0; at < kGuidOrder.size(); ++at) {
        if (at == 4 || at == 6 || at == 8 || at == 10) text += '-';
        const auto byte =
            std::to_integer<unsigned>(guid.bytes[static_cast<std::size_t>(kGuidOrder[at])]);
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text + '}';
}

std::optional<jet::Guid> GuidOf(std::string_view text) {
    jet::Guid guid;
    std::size_t at = 1;
    for (const int place : kGuidOrder) {
        if (at < text.size() && text[at] == '-') ++at;
        unsigned byte = 0;
        if (at + 2 > text.size() ||
            std::sscanf(std::string(text.substr(at, 2)).c_str(), "%2x", &byte) != 1) {
            return std::nullopt;
        }
        guid.bytes[static_cast<std::size_t>(place)] = static_cast<std::byte>(byte);
        at += 2;
    }
    if (GuidText(guid) != text) return std::nullopt;
    return guid;
}

std::string ToUtf8(std::u16string_view text) {
    std::string converted;
    converted.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (IsLead(unit) && at + 1 < text.size() && IsTrail(text[at + 1])) {
            AppendCharacter(converted,
                            0x10000 + ((unit - 0xD800U) << 10U) + (text[at + 1] - 0xDC00U));
            ++at;
        } else {
            AppendCharacter(converted, IsLead(unit) || IsTrail(unit) ? kReplacement : unit);
        }
    }
    return converted;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string converted;
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at]);
        const std::size_t more = first < 0xC0 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
        char32_t character = more == 0 ? first : first & (0x3FU >> more);
        for (std::size_t next = 1; next <= more && at + next < text.size(); ++next) {
            character = character << 6U | (static_cast<unsigned char>(text[at + next]) & 0x3FU);
        }
        at += more + 1;
        if (character < 0x10000) {
            converted += static_cast<char16_t>(character);
        } else {
            converted += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10U));
            converted += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FFU));
        }
    }
    return converted;
}

}  // namespace jetsql
