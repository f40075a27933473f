#include "parts/dump_values.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "parts/sha256.h"
#include "values/text.h"

namespace {

constexpr std::size_t kLongestHex = 1024;
constexpr std::int64_t kMillisecondsOfDay = 86400000;

std::string Hex(std::uint64_t value, int digits) {
    std::string text;
    for (int shift = 4 * digits - 4; shift >= 0; shift -= 4) {
        text += "0123456789abcdef"[value >> shift & 15U];
    }
    return text;
}

void AppendUtf8(std::string& text, std::uint32_t character) {
    const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
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

bool IsHigh(char16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLow(char16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

bool IsEscaped(char16_t unit) {
    return unit < 0x20 || unit == 0x7F || unit == 0x85 || unit == 0x2028 || unit == 0x2029 ||
           unit >= 0xFFFE || IsHigh(unit) || IsLow(unit);
}

std::string DumpBytes(std::span<const std::byte> bytes) {
    if (bytes.size() > kLongestHex) {
        return "\"sha256:" + std::to_string(bytes.size()) + ":" + Sha256(bytes) + "\"";
    }
    std::string text = "\"x";
    for (const std::byte byte : bytes) {
        text += Hex(std::to_integer<std::uint64_t>(byte), 2);
    }
    return text + "\"";
}

// Year, month and day of a day number (0 is 1899-12-30) in the calendar of today, extended.
std::array<std::int64_t, 3> CivilDate(std::int64_t day) {
    constexpr std::int64_t kDaysOfEra = 146097;
    const std::int64_t shifted = day + 693899;  // from 0000-03-01
    const std::int64_t era = (shifted >= 0 ? shifted : shifted - kDaysOfEra + 1) / kDaysOfEra;
    const std::int64_t dayOfEra = shifted - era * kDaysOfEra;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153;
    const std::int64_t dayOfMonth = dayOfYear - (153 * month + 2) / 5 + 1;
    const std::int64_t civilMonth = month < 10 ? month + 3 : month - 9;
    return {yearOfEra + era * 400 + (civilMonth <= 2 ? 1 : 0), civilMonth, dayOfMonth};
}

std::string DumpDate(double days) {
    const double whole = std::trunc(days);
    std::int64_t day = static_cast<std::int64_t>(whole);
    std::int64_t time = static_cast<std::int64_t>(
        std::floor(std::fabs(days - whole) * static_cast<double>(kMillisecondsOfDay) + 0.5));
    if (time >= kMillisecondsOfDay) {
        time -= kMillisecondsOfDay;
        ++day;
    }
    const auto [year, month, dayOfMonth] = CivilDate(day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "\"%04d-%02d-%02dT%02d:%02d:%02d.%03d|",
                  static_cast<int>(year), static_cast<int>(month), static_cast<int>(dayOfMonth),
                  static_cast<int>(time / 3600000), static_cast<int>(time / 60000 % 60),
                  static_cast<int>(time / 1000 % 60), static_cast<int>(time % 1000));
    return text.data() + Hex(std::bit_cast<std::uint64_t>(days), 16) + "\"";
}

// A number of whole units as decimal digits with a point before the last `scale` of them.
std::string WithPoint(std::string digits, std::size_t scale, bool negative) {
    if (digits.size() <= scale) {
        digits.insert(0, scale + 1 - digits.size(), '0');
    }
    if (scale != 0) {
        digits.insert(digits.size() - scale, 1, '.');
    }
    const bool zero = digits.find_first_not_of("0.") == std::string::npos;
    return '"' + std::string(negative && !zero ? "-" : "") + digits + "\"";
}

std::string DumpDecimal(const jet::Decimal& decimal) {
    std::array<std::uint8_t, 16> rest = decimal.magnitude;
    std::string digits;
    bool zero = false;
    while (!zero) {
        unsigned remainder = 0;
        zero = true;
        for (std::uint8_t& byte : rest) {
            const unsigned value = remainder << 8 | byte;
            byte = static_cast<std::uint8_t>(value / 10);
            remainder = value % 10;
            zero = zero && byte == 0;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + remainder));
    }
    return WithPoint(digits, decimal.scale, decimal.negative);
}

std::string DumpGuid(const jet::Guid& guid) {
    constexpr std::array<std::size_t, 16> kOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                    8, 9, 10, 11, 12, 13, 14, 15};
    std::string text = "\"{";
    for (std::size_t i = 0; i < kOrder.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        text += Hex(std::to_integer<std::uint64_t>(guid.bytes[kOrder[i]]), 2);
    }
    return text + "}\"";
}

struct Dumper {
    std::string operator()(std::monostate) const { return "null"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int32_t value) const { return std::to_string(value); }
    std::string operator()(jet::Currency value) const {
        const bool negative = value.tenThousandths < 0;
        const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
        return WithPoint(std::to_string(negative ? 0 - bits : bits), 4, negative);
    }
    std::string operator()(float value) const {
        return '"' + Hex(std::bit_cast<std::uint32_t>(value), 8) + "\"";
    }
    std::string operator()(double value) const {
        return '"' + Hex(std::bit_cast<std::uint64_t>(value), 16) + "\"";
    }
    std::string operator()(jet::Date value) const { return DumpDate(value.days); }
    std::string operator()(const std::u16string& value) const { return Quoted(value); }
    std::string operator()(const jet::Binary& value) const { return DumpBytes(value); }
    std::string operator()(const jet::Guid& value) const { return DumpGuid(value); }
    std::string operator()(const jet::Decimal& value) const { return DumpDecimal(value); }
};

}  // namespace

std::string Quoted(std::u16string_view text) {
    std::string quoted = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (IsHigh(unit) && i + 1 < text.size() && IsLow(text[i + 1])) {
            AppendUtf8(quoted, 0x10000U + ((unit - 0xD800U) << 10) + (text[++i] - 0xDC00U));
        } else if (IsEscaped(unit)) {
            quoted += "\\u" + Hex(unit, 4);
        } else {
            if (unit == u'"' || unit == u'\\') {
                quoted += '\\';
            }
            AppendUtf8(quoted, unit);
        }
    }
    return quoted + "\"";
}

std::string QuotedName(std::string_view utf8) {
    return Quoted(jet::WidenName(utf8));
}

std::string DumpValue(const jet::Value& value) {
    return std::visit(Dumper(), value.Get());
}
