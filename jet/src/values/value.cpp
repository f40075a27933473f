#include "jet/value.h"

#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>

#include "jet/convert.h"
#include "jet/error.h"

namespace jet {

namespace {

[[noreturn]] void Mismatch() {
    throw Error(ErrorKind::kTypeMismatch, "The value is of a type that does not fit here.");
}

[[noreturn]] void TooLarge() {
    throw Error(ErrorKind::kOverflow, "The number lies outside the range that fits here.");
}

double FromText(std::u16string_view text) {
    std::string plain;
    for (const char16_t c : text) {
        if (c >= 0x80) Mismatch();
        if (c != u' ' || !plain.empty()) plain.push_back(static_cast<char>(c));
    }
    while (!plain.empty() && plain.back() == ' ') plain.pop_back();
    const char* begin = plain.data();
    const char* end = begin + plain.size();
    if (begin != end && *begin == '+') ++begin;
    double number = 0;
    const auto result = std::from_chars(begin, end, number);
    if (result.ec == std::errc::result_out_of_range) TooLarge();
    if (result.ec != std::errc() || result.ptr != end || begin == end) Mismatch();
    return number;
}

// Halves go to the even neighbor, whatever rounding mode the process runs in.
double RoundHalfToEven(double number) {
    const double below = std::floor(number);
    const double rest = number - below;
    if (rest < 0.5) return below;
    if (rest > 0.5) return below + 1;
    return std::fmod(below, 2) == 0 ? below : below + 1;
}

std::u16string Widen(std::string_view text) {
    return {text.begin(), text.end()};
}

template <std::floating_point Number>
std::u16string ShortestText(Number number) {
    char digits[400];
    const Number size = std::abs(number);
    const auto width = static_cast<double>(size);
    const bool plain = number == 0 || (width >= 1e-5 && width < 1e15);
    const auto result = plain ? std::to_chars(std::begin(digits), std::end(digits), number,
                                              std::chars_format::fixed)
                              : std::to_chars(std::begin(digits), std::end(digits), number);
    return Widen({digits, static_cast<std::size_t>(result.ptr - digits)});
}

// The digits of an exact decimal, without trailing zeros behind the point.
std::u16string PointedText(std::string digits, int scale, bool negative) {
    while (static_cast<int>(digits.size()) <= scale) digits.insert(digits.begin(), '0');
    std::string text = digits.substr(0, digits.size() - static_cast<std::size_t>(scale));
    std::string fraction = digits.substr(digits.size() - static_cast<std::size_t>(scale));
    while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
    if (!fraction.empty()) text += "." + fraction;
    return Widen((negative ? "-" : "") + text);
}

std::u16string DecimalText(const Decimal& decimal) {
    std::array<std::uint8_t, 16> rest = decimal.magnitude;
    std::string digits;
    bool more = true;
    while (more) {
        more = false;
        unsigned remainder = 0;
        for (std::uint8_t& byte : rest) {
            const unsigned part = remainder << 8 | byte;
            byte = static_cast<std::uint8_t>(part / 10);
            remainder = part % 10;
            more = more || byte != 0;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + remainder));
    }
    return PointedText(digits, decimal.scale, decimal.negative && digits != "0");
}

struct ToDouble {
    double operator()(bool value) const { return value ? -1 : 0; }
    double operator()(std::int32_t value) const { return value; }
    double operator()(Currency value) const {
        return static_cast<double>(value.tenThousandths) / 10000;
    }
    double operator()(float value) const { return static_cast<double>(value); }
    double operator()(double value) const { return value; }
    double operator()(Date value) const { return value.days; }
    double operator()(const std::u16string& value) const { return FromText(value); }
    // By way of the text, which rounds once.
    double operator()(const Decimal& value) const { return FromText(DecimalText(value)); }
    template <typename Other>
    double operator()(const Other&) const {
        Mismatch();
    }
};

struct ToText {
    std::u16string operator()(bool value) const { return value ? u"True" : u"False"; }
    std::u16string operator()(std::int32_t value) const { return Widen(std::to_string(value)); }
    std::u16string operator()(Currency value) const {
        const bool negative = value.tenThousandths < 0;
        const auto bits = static_cast<std::uint64_t>(value.tenThousandths);
        return PointedText(std::to_string(negative ? 0 - bits : bits), 4, negative);
    }
    std::u16string operator()(float value) const { return ShortestText(value); }
    std::u16string operator()(double value) const { return ShortestText(value); }
    std::u16string operator()(Date value) const { return ShortestText(value.days); }
    std::u16string operator()(const std::u16string& value) const { return value; }
    std::u16string operator()(const Decimal& value) const { return DecimalText(value); }
    std::u16string operator()(const Guid& value) const { return Widen(GuidText(value)); }
    template <typename Other>
    std::u16string operator()(const Other&) const {
        Mismatch();
    }
};

}  // namespace

bool Value::AsBoolean() const {
    if (const bool* value = std::get_if<bool>(&Get())) return *value;
    return AsDouble() != 0;
}

std::int32_t Value::AsLong() const {
    if (const std::int32_t* value = std::get_if<std::int32_t>(&Get())) return *value;
    const double number = RoundHalfToEven(AsDouble());
    // Written so that a number that is not one fails too.
    if (!(number >= std::numeric_limits<std::int32_t>::min() &&
          number <= std::numeric_limits<std::int32_t>::max())) {
        TooLarge();
    }
    return static_cast<std::int32_t>(number);
}

float Value::AsSingle() const {
    if (const float* value = std::get_if<float>(&Get())) return *value;
    const double number = AsDouble();
    const auto single = static_cast<float>(number);
    if (std::isinf(single) && !std::isinf(number)) TooLarge();
    return single;
}

double Value::AsDouble() const {
    return std::visit(ToDouble{}, Get());
}

std::u16string Value::AsText() const {
    return std::visit(ToText{}, Get());
}

}  // namespace jet
