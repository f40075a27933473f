#include "values/decimal.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

namespace jet {

namespace {

constexpr int kLargestScale = std::numeric_limits<std::uint8_t>::max();

bool AddDigit(Decimal& decimal, unsigned digit) {
    if (!TimesTen(decimal)) return false;
    for (; digit > 0; --digit) AddOne(decimal);
    return true;
}

// Reads the digits up to an exponent, and counts those behind the point.
bool ReadDigits(std::string_view& rest, Decimal& decimal, int& behindPoint) {
    bool point = false;
    bool any = false;
    while (!rest.empty() && rest.front() != 'e' && rest.front() != 'E') {
        const char c = rest.front();
        rest.remove_prefix(1);
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9' || !AddDigit(decimal, static_cast<unsigned>(c - '0'))) return false;
        any = true;
        if (point) ++behindPoint;
    }
    return any;
}

bool ReadExponent(std::string_view rest, int& exponent) {
    if (rest.empty()) return true;
    rest.remove_prefix(1);
    if (rest.starts_with('+')) rest.remove_prefix(1);
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), exponent);
    return !rest.empty() && error == std::errc() && end == rest.data() + rest.size();
}

// Without zeros at the end; empty for zero.
std::string SignificantDigits(Decimal decimal, int& pointAt) {
    const int count = DigitCount(decimal);
    std::string digits(static_cast<std::size_t>(count), '0');
    for (std::size_t i = digits.size(); i-- > 0;) {
        digits[i] = static_cast<char>('0' + DivideByTen(decimal));
    }
    pointAt = count - decimal.scale;
    while (!digits.empty() && digits.back() == '0') digits.pop_back();
    return digits;
}

int CompareMagnitudes(const Decimal& left, const Decimal& right) {
    int leftPoint = 0;
    int rightPoint = 0;
    const std::string leftDigits = SignificantDigits(left, leftPoint);
    const std::string rightDigits = SignificantDigits(right, rightPoint);
    if (leftDigits.empty() || rightDigits.empty()) {
        return static_cast<int>(!leftDigits.empty()) - static_cast<int>(!rightDigits.empty());
    }
    if (leftPoint != rightPoint) return leftPoint < rightPoint ? -1 : 1;
    const int order = leftDigits.compare(rightDigits);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

bool IsZero(const Decimal& decimal) {
    return std::all_of(decimal.magnitude.begin(), decimal.magnitude.end(),
                       [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

bool TimesTen(Decimal& decimal) {
    unsigned carry = 0;
    for (std::size_t i = decimal.magnitude.size(); i-- > 0;) {
        carry += decimal.magnitude[i] * 10U;
        decimal.magnitude[i] = static_cast<std::uint8_t>(carry & 0xFF);
        carry >>= 8;
    }
    return carry == 0;
}

unsigned DivideByTen(Decimal& decimal) {
    unsigned rest = 0;
    for (std::uint8_t& byte : decimal.magnitude) {
        rest = rest << 8 | byte;
        byte = static_cast<std::uint8_t>(rest / 10);
        rest %= 10;
    }
    return rest;
}

void AddOne(Decimal& decimal) {
    for (std::size_t i = decimal.magnitude.size(); i-- > 0;) {
        if (++decimal.magnitude[i] != 0) return;
    }
}

bool Rescale(Decimal& decimal, int scale, Halves halves) {
    for (; decimal.scale < scale; ++decimal.scale) {
        if (!TimesTen(decimal)) return false;
    }
    unsigned last = 0;
    bool more = false;
    for (; decimal.scale > scale; --decimal.scale) {
        more = more || last != 0;
        last = DivideByTen(decimal);
    }
    const bool isOdd = (decimal.magnitude.back() & 1U) != 0;
    const bool halfUp = halves == Halves::kAwayFromZero || more || isOdd;
    if (last > 5 || (last == 5 && halfUp)) AddOne(decimal);
    if (IsZero(decimal)) decimal.negative = false;
    return true;
}

int DigitCount(Decimal decimal) {
    int digits = 0;
    while (!IsZero(decimal)) {
        DivideByTen(decimal);
        ++digits;
    }
    return digits;
}

std::optional<Decimal> ParseDecimal(std::u16string_view text) {
    while (text.starts_with(u' ')) text.remove_prefix(1);
    while (text.ends_with(u' ')) text.remove_suffix(1);
    std::string plain;
    for (const char16_t c : text) {
        if (c >= 0x80) return std::nullopt;
        plain.push_back(static_cast<char>(c));
    }
    std::string_view rest = plain;
    Decimal decimal;
    decimal.negative = rest.starts_with('-');
    if (decimal.negative || rest.starts_with('+')) rest.remove_prefix(1);
    int behindPoint = 0;
    int exponent = 0;
    if (!ReadDigits(rest, decimal, behindPoint) || !ReadExponent(rest, exponent)) {
        return std::nullopt;
    }
    if (IsZero(decimal)) return decimal;
    // Doubles have exponents of three digits; what is larger is none of ours.
    constexpr int kMostTens = 1000;
    if (exponent > kMostTens || exponent < -kMostTens) return std::nullopt;
    int scale = behindPoint - exponent;
    for (; scale < 0; ++scale) {
        if (!TimesTen(decimal)) return std::nullopt;
    }
    while (scale > kLargestScale && !IsZero(decimal)) {
        DivideByTen(decimal);
        --scale;
    }
    if (IsZero(decimal)) AddOne(decimal);
    decimal.scale = static_cast<std::uint8_t>(std::min(scale, kLargestScale));
    return decimal;
}

int CompareDecimals(const Decimal& left, const Decimal& right) {
    const bool leftNegative = left.negative && !IsZero(left);
    const bool rightNegative = right.negative && !IsZero(right);
    if (leftNegative != rightNegative) return leftNegative ? -1 : 1;
    return leftNegative ? -CompareMagnitudes(left, right) : CompareMagnitudes(left, right);
}

}  // namespace jet
