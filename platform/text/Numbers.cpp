#include "platform/text/Numbers.h"

#include <QCoreApplication>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/RuntimeError.h"

namespace platform {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

[[noreturn]] void ThrowOverflow() {
    throw RuntimeError(kOverflow, QStringLiteral("Overflow"));
}

[[noreturn]] void ThrowTypeMismatch() {
    throw RuntimeError(kTypeMismatch, QStringLiteral("Type mismatch"));
}

// The text without blanks, tabs and line ends; a character outside ASCII ends every number.
std::string Squeezed(const QString& text) {
    std::string result;
    for (const QChar c : text) {
        if (c == u' ' || c == u'\t' || c == u'\r' || c == u'\n') {
            continue;
        }
        result += c.unicode() < 128 ? static_cast<char>(c.unicode()) : '?';
    }
    return result;
}

std::size_t SkipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at])) {
        ++at;
    }
    return at;
}

// How many characters at the start form a decimal number: sign, digits, point, digits, exponent.
std::size_t NumberLength(std::string_view text) {
    std::size_t at = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const std::size_t wholeStart = at;
    at = SkipDigits(text, at);
    std::size_t digits = at - wholeStart;
    if (at < text.size() && text[at] == '.') {
        const std::size_t end = SkipDigits(text, at + 1);
        digits += end - at - 1;
        at = end;
    }
    if (digits == 0) {
        return 0;
    }
    if (at < text.size() && std::string_view("eEdD").find(text[at]) != std::string_view::npos) {
        std::size_t exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == '-' || text[exponent] == '+')) {
            ++exponent;
        }
        const std::size_t end = SkipDigits(text, exponent);
        at = end > exponent ? end : at;
    }
    return at;
}

// `number` is what NumberLength accepts.
double ToDouble(std::string_view number) {
    std::string plain(number);
    for (char& c : plain) {
        c = c == 'd' || c == 'D' ? 'e' : c;
    }
    const std::size_t start = plain[0] == '+' ? 1 : 0;
    double value = 0;
    const auto result = std::from_chars(plain.data() + start, plain.data() + plain.size(), value);
    if (result.ec != std::errc::result_out_of_range) {
        return value;
    }
    // Both too large and too small end here; only the latter reads as zero.
    const std::size_t mark = plain.find_first_of("eE");
    if (mark != std::string::npos && mark + 1 < plain.size() && plain[mark + 1] == '-') {
        return 0;
    }
    ThrowOverflow();
}

// The digits after "&H" or "&O", as far as they go.
double ReadInBase(std::string_view digits, int base) {
    double value = 0;
    for (const char c : digits) {
        const int digit = IsDigit(c)             ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : base;
        if (digit >= base) {
            break;
        }
        value = value * base + digit;
    }
    return value;
}

// A finite number as sign, significant digits and the place of the decimal point: 0.DIGITS x
// 10^point.
struct Decimal {
    bool negative = false;
    std::string digits;
    int point = 0;
};

Decimal FromScientific(std::string_view text) {
    Decimal result;
    result.negative = text[0] == '-';
    const std::size_t mark = text.find('e');
    for (const char c : text.substr(0, mark)) {
        if (IsDigit(c)) {
            result.digits += c;
        }
    }
    std::string_view exponent = text.substr(mark + 1);
    if (exponent[0] == '+') {
        exponent.remove_prefix(1);
    }
    int power = 0;
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
    result.point = power + 1;
    const std::size_t last = result.digits.find_last_not_of('0');
    result.digits.resize(last == std::string::npos ? 0 : last + 1);
    return result;
}

template <typename Number>
Decimal Shortest(Number value) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::scientific);
    return FromScientific({buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data())});
}

// Fifteen significant digits: what a double holds of a decimal number.
Decimal FifteenDigits(double value) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::scientific, 14);
    return FromScientific({buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data())});
}

// Keeps `decimals` digits behind the point, halves away from zero.
void Round(Decimal& number, int decimals) {
    const int kept = number.point + decimals;
    if (kept >= static_cast<int>(number.digits.size())) {
        return;
    }
    if (kept < 0) {
        number.digits.clear();
        return;
    }
    const auto length = static_cast<std::size_t>(kept);
    const bool up = number.digits[length] >= '5';
    number.digits.resize(length);
    if (!up) {
        return;
    }
    std::size_t at = length;
    while (at > 0 && number.digits[at - 1] == '9') {
        number.digits[--at] = '0';
    }
    if (at > 0) {
        ++number.digits[at - 1];
    } else {
        number.digits.insert(number.digits.begin(), '1');
        ++number.point;
    }
}

// The digits before the point, without leading zeros; "" for a number below one.
std::string WholePart(const Decimal& number) {
    if (number.point <= 0 || number.digits.empty()) {
        return {};
    }
    std::string whole = number.digits.substr(0, static_cast<std::size_t>(number.point));
    whole.resize(static_cast<std::size_t>(number.point), '0');
    return whole;
}

// The digits behind the point, without trailing zeros.
std::string Fraction(const Decimal& number) {
    if (number.point >= static_cast<int>(number.digits.size())) {
        return {};
    }
    std::string fraction =
        number.point > 0
            ? number.digits.substr(static_cast<std::size_t>(number.point))
            : std::string(static_cast<std::size_t>(-number.point), '0') + number.digits;
    const std::size_t last = fraction.find_last_not_of('0');
    fraction.resize(last == std::string::npos ? 0 : last + 1);
    return fraction;
}

template <typename Number>
QString StrOf(Number value, int longestWhole) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? QStringLiteral("NaN")
                                 : (value < 0 ? QStringLiteral("-Inf") : QStringLiteral("Inf"));
    }
    const Decimal number = Shortest(value);
    if (number.digits.empty()) {
        return QStringLiteral("0");
    }
    std::string text = number.negative ? "-" : "";
    if (number.point >= -6 && number.point <= longestWhole) {
        const std::string whole = WholePart(number);
        const std::string fraction = Fraction(number);
        text += (whole.empty() ? "0" : whole) + (fraction.empty() ? "" : "." + fraction);
    } else {
        const int power = number.point - 1;
        text += number.digits.substr(0, 1);
        text += number.digits.size() > 1 ? "." + number.digits.substr(1) : "";
        text += power < 0 ? "E-" : "E+";
        text += (std::abs(power) < 10 ? "0" : "") + std::to_string(std::abs(power));
    }
    return QString::fromStdString(text);
}

std::string Grouped(const std::string& whole) {
    std::string result;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) {
            result += ',';
        }
        result += whole[i];
    }
    return result;
}

struct Pattern {
    QString before;
    QString after;
    bool grouped = false;
    bool point = false;
    std::size_t leastWhole = 0;
    std::size_t leastFraction = 0;
    std::size_t mostFraction = 0;
};

Pattern ReadPattern(const QString& text) {
    const QString marks = QStringLiteral("#0,.");
    qsizetype start = 0;
    while (start < text.size() && !marks.contains(text[start])) {
        ++start;
    }
    qsizetype end = start;
    Pattern pattern;
    for (; end < text.size() && marks.contains(text[end]); ++end) {
        const QChar c = text[end];
        if (c == u'.') {
            pattern.point = true;
        } else if (c == u',') {
            pattern.grouped = true;
        } else if (pattern.point) {
            ++pattern.mostFraction;
            pattern.leastFraction = c == u'0' ? pattern.mostFraction : pattern.leastFraction;
        } else if (c == u'0' || pattern.leastWhole > 0) {
            ++pattern.leastWhole;
        }
    }
    pattern.before = text.left(start);
    pattern.after = text.mid(end);
    return pattern;
}

}  // namespace

double Val(const QString& text) {
    const std::string plain = Squeezed(text);
    if (plain.size() >= 2 && plain[0] == '&') {
        const std::string_view digits = std::string_view(plain).substr(2);
        if (plain[1] == 'H' || plain[1] == 'h') {
            return ReadInBase(digits, 16);
        }
        return plain[1] == 'O' || plain[1] == 'o' ? ReadInBase(digits, 8) : 0;
    }
    const std::size_t length = NumberLength(plain);
    return length == 0 ? 0 : ToDouble(std::string_view(plain).substr(0, length));
}

bool IsPlainNumber(const QString& text) {
    const QString trimmed = text.trimmed();
    const std::string plain = Squeezed(trimmed);
    return !plain.empty() && static_cast<qsizetype>(plain.size()) == trimmed.size() &&
           NumberLength(plain) == plain.size();
}

double CDbl(const QString& text) {
    QString plain = text.trimmed();
    bool negative = false;
    if (plain.startsWith(u'(') && plain.endsWith(u')')) {
        negative = true;
        plain = plain.mid(1, plain.size() - 2);
    }
    if (plain.startsWith(u'-') || plain.startsWith(u'+')) {
        negative = negative != plain.startsWith(u'-');
        plain.remove(0, 1);
    }
    if (plain.startsWith(u'$')) {
        plain.remove(0, 1);
    }
    const qsizetype wholeEnd = plain.indexOf(u'.');
    QString whole = wholeEnd < 0 ? plain : plain.left(wholeEnd);
    whole.remove(u',');
    plain = whole + (wholeEnd < 0 ? QString() : plain.mid(wholeEnd));
    if (!IsPlainNumber(plain) || plain.startsWith(u'-') || plain.startsWith(u'+')) {
        ThrowTypeMismatch();
    }
    const double value = Val(plain);
    return negative ? -value : value;
}

float CSng(const QString& text) {
    return ToSingle(CDbl(text));
}

std::int32_t CLng(double value) {
    const double rounded = std::nearbyint(value);
    if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
          rounded <= std::numeric_limits<std::int32_t>::max())) {
        ThrowOverflow();
    }
    return static_cast<std::int32_t>(rounded);
}

float ToSingle(double value) {
    // Half a step above the largest single: from here on rounding would leave the range.
    constexpr double kLimit = 0x1.ffffffp127;
    if (std::isfinite(value) && std::abs(value) >= kLimit) {
        ThrowOverflow();
    }
    return static_cast<float>(value);
}

std::optional<float> TypedSingle(const QString& text) {
    try {
        return ToSingle(Val(text));
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

QString TooLarge(const QString& text) {
    return QCoreApplication::translate("Numbers", "The number \"%1\" is too large.").arg(text);
}

QString Str(float value) {
    return StrOf(value, 9);
}

QString Str(double value) {
    return StrOf(value, 15);
}

QString Str(std::int32_t value) {
    return QString::number(value);
}

QString Format(double value, const QString& pattern) {
    if (!std::isfinite(value) || pattern.isEmpty()) {
        return Str(value);
    }
    const Pattern parts = ReadPattern(pattern);
    Decimal number = FifteenDigits(value);
    Round(number, static_cast<int>(parts.mostFraction));
    std::string whole = WholePart(number);
    std::string fraction = Fraction(number);
    const bool isZero = whole.empty() && fraction.empty();
    if (whole.size() < parts.leastWhole) {
        whole.insert(0, parts.leastWhole - whole.size(), '0');
    }
    if (fraction.size() < parts.leastFraction) {
        fraction.append(parts.leastFraction - fraction.size(), '0');
    }
    QString text = number.negative && !isZero ? QStringLiteral("-") : QString();
    text += parts.before + QString::fromStdString(parts.grouped ? Grouped(whole) : whole);
    text += (parts.point ? QStringLiteral(".") : QString()) + QString::fromStdString(fraction);
    return text + parts.after;
}

}  // namespace platform
