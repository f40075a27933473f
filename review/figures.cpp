#include "review/figures.h"

#include <array>
#include <charconv>
#include <cmath>

namespace review {

namespace {

// The shortest text of a finite number that reads back as the same, without an exponent.
template <typename Number>
std::string Plain(Number number) {
    std::array<char, 512> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                   std::chars_format::fixed);
    return {buffer.data(), end.ptr};
}

void Group(std::string& text) {
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    std::size_t point = text.find('.');
    if (point == std::string::npos) {
        point = text.size();
    }
    while (point > first + 3) {
        point -= 3;
        text.insert(point, 1, ',');
    }
}

// "-0" and "-0.00" are 0.
void DropSignOfZero(std::string& text) {
    if (text.starts_with('-') && text.find_first_of("123456789") == std::string::npos) {
        text.erase(0, 1);
    }
}

// Keeps so many digits behind the point.
void Round(std::string& text, int decimals) {
    std::size_t point = text.find('.');
    if (point == std::string::npos) {
        point = text.size();
        text += '.';
    }
    const std::size_t kept = point + 1 + static_cast<std::size_t>(decimals);
    text.resize(std::max(text.size(), kept + 1), '0');
    bool up = text[kept] >= '5';
    text.resize(kept);
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    for (std::size_t at = kept; up && at > first;) {
        --at;
        if (text[at] == '.') {
            continue;
        }
        up = text[at] == '9';
        text[at] = up ? '0' : static_cast<char>(text[at] + 1);
    }
    if (up) {
        text.insert(first, 1, '1');
    }
    if (text.back() == '.') {
        text.pop_back();
    }
}

std::string Finished(std::string text) {
    DropSignOfZero(text);
    Group(text);
    return text;
}

template <typename Number>
std::string FigureOf(Number number) {
    if (std::isnan(number)) {
        return "no number";
    }
    if (std::isinf(number)) {
        return number < 0 ? "minus infinite" : "infinite";
    }
    return Finished(Plain(number));
}

template <typename Number>
std::string FixedOf(Number number, int decimals) {
    if (!std::isfinite(number)) {
        return FigureOf(number);
    }
    std::string text = Plain(number);
    Round(text, decimals);
    return Finished(text);
}

}  // namespace

double Typed(float number) {
    if (!std::isfinite(number)) {
        return static_cast<double>(number);
    }
    const std::string text = Plain(number);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string Figure(float number) {
    return FigureOf(number);
}

std::string Figure(double number) {
    return FigureOf(number);
}

std::string Figure(const season::Single& number) {
    return FigureOf(number.value_or(0.0F));
}

std::string Fixed(float number, int decimals) {
    return FixedOf(number, decimals);
}

std::string Fixed(double number, int decimals) {
    return FixedOf(number, decimals);
}

std::string ShortFigure(double number) {
    constexpr double kMillion = 1e6;
    constexpr double kMost = 1e12;
    const double amount = std::abs(number);
    if (!(amount >= kMillion) || std::isinf(number)) {
        // What is shortened was a single once.
        return Figure(static_cast<float>(number));
    }
    const auto rounded = [](double part) {
        std::array<char, 64> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), part,
                                       std::chars_format::general, 3);
        return std::string(buffer.data(), end.ptr);
    };
    const std::string sign = number < 0 ? "-" : "";
    if (amount < kMost) {
        return sign + Figure(std::stod(rounded(amount / kMillion))) + "M";
    }
    const double power = std::floor(std::log10(amount));
    return sign + rounded(amount / std::pow(10, power)) + "e" + Fixed(power, 0);
}

std::string Counted(std::size_t number, std::string_view word) {
    return Fixed(static_cast<double>(number), 0) + " " + std::string(word) +
           (number == 1 ? "" : "s");
}

}  // namespace review
