#include "values/column.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "jet/convert.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "values/decimal.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::uint8_t kNegativeSign = 0x80;
constexpr std::size_t kDecimalSize = 17;

[[noreturn]] void ThrowMismatch(const Column& column) {
    throw Error(ErrorKind::kTypeMismatch,
                "The value does not fit the type of the field '" + column.name + "'.");
}

[[noreturn]] void ThrowTooLarge(const Column& column) {
    throw Error(ErrorKind::kOverflow,
                "The number is too large for the field '" + column.name + "'.");
}

[[noreturn]] void ThrowTooLong(const Column& column) {
    throw Error(ErrorKind::kTextTooLong,
                "The field '" + column.name + "' is too small to accept the amount of data.");
}

std::int32_t ToRange(const Column& column, const Value& value, std::int32_t low,
                     std::int32_t high) {
    const std::int32_t number = value.AsLong();
    if (number < low || number > high) ThrowTooLarge(column);
    return number;
}

// Of what holds decimal digits: a double in between would lose the last ones of large sums.
std::optional<Currency> ExactCurrency(const Value& value) {
    std::optional<Decimal> decimal;
    if (const auto* text = std::get_if<std::u16string>(&value.Get())) decimal = ParseDecimal(*text);
    if (const auto* held = std::get_if<Decimal>(&value.Get())) decimal = *held;
    if (!decimal || !Rescale(*decimal, 4, Halves::kToEven)) return std::nullopt;
    std::uint64_t low = 0;
    for (std::size_t i = 0; i < decimal->magnitude.size(); ++i) {
        if (i < 8 && decimal->magnitude[i] != 0) return std::nullopt;
        low = low << 8 | decimal->magnitude[i];
    }
    const std::uint64_t largest =
        std::uint64_t{std::numeric_limits<std::int64_t>::max()} + (decimal->negative ? 1 : 0);
    if (low > largest) return std::nullopt;
    return Currency{static_cast<std::int64_t>(decimal->negative ? 0 - low : low)};
}

Currency ToCurrency(const Column& column, const Value& value) {
    if (const auto* money = std::get_if<Currency>(&value.Get())) return *money;
    if (const auto* number = std::get_if<std::int32_t>(&value.Get())) {
        return {std::int64_t{*number} * 10000};
    }
    if (const auto exact = ExactCurrency(value)) return *exact;
    const double scaled = value.AsDouble() * 10000;
    constexpr double kLimit = 9223372036854775807.0;
    if (!(std::abs(scaled) < kLimit)) ThrowTooLarge(column);
    const double below = std::floor(scaled);
    const double rest = scaled - below;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(below, 2) != 0);
    return {static_cast<std::int64_t>(up ? below + 1 : below)};
}

Decimal DecimalOf(const Column& column, const Value& value) {
    if (const auto* decimal = std::get_if<Decimal>(&value.Get())) return *decimal;
    // The shortest decimal text says what the writer meant by a binary fraction.
    const auto decimal = ParseDecimal(value.AsText());
    if (!decimal) {
        static_cast<void>(value.AsDouble());  // which says so when it is no number
        ThrowTooLarge(column);
    }
    return *decimal;
}

Decimal ToDecimal(const Column& column, const Value& value) {
    Decimal decimal = DecimalOf(column, value);
    if (!Rescale(decimal, column.scale, Halves::kAwayFromZero)) ThrowTooLarge(column);
    if (column.precision != 0 && DigitCount(decimal) > column.precision) ThrowTooLarge(column);
    return decimal;
}

Binary ToBinary(const Column& column, const Value& value) {
    if (const auto* bytes = std::get_if<Binary>(&value.Get())) return *bytes;
    if (const auto* guid = std::get_if<Guid>(&value.Get())) {
        return {guid->bytes.begin(), guid->bytes.end()};
    }
    ThrowMismatch(column);
}

Guid ToGuid(const Column& column, const Value& value) {
    if (const auto* text = std::get_if<std::u16string>(&value.Get())) {
        return ParseGuid(NarrowName(*text));
    }
    if (const auto* guid = std::get_if<Guid>(&value.Get())) return *guid;
    const auto* bytes = std::get_if<Binary>(&value.Get());
    if (bytes == nullptr || bytes->size() != 16) ThrowMismatch(column);
    Guid guid;
    std::copy(bytes->begin(), bytes->end(), guid.bytes.begin());
    return guid;
}

Decimal DecodeDecimal(const Column& column, Bytes stored) {
    Decimal decimal;
    decimal.negative = (ReadU8(stored, 0) & kNegativeSign) != 0;
    for (std::size_t word = 0; word < 4; ++word) {
        const std::uint32_t bits = ReadU32(stored, 1 + 4 * word);
        for (std::size_t i = 0; i < 4; ++i) {
            decimal.magnitude[4 * word + i] = static_cast<std::uint8_t>(bits >> (24 - 8 * i));
        }
    }
    decimal.scale = column.scale;
    return decimal;
}

template <typename Unsigned>
void AppendNumber(Unsigned bits, std::vector<std::byte>& into) {
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        into.push_back(static_cast<std::byte>(bits >> (8 * i) & 0xFFU));
    }
}

void AppendDecimal(const Decimal& decimal, std::vector<std::byte>& into) {
    into.push_back(static_cast<std::byte>(decimal.negative ? kNegativeSign : 0));
    for (std::size_t word = 0; word < 4; ++word) {
        for (std::size_t i = 4; i-- > 0;) {
            into.push_back(static_cast<std::byte>(decimal.magnitude[4 * word + i]));
        }
    }
}

// Text in a text field and bytes in one of bytes need no conversion.
bool IsAsHeld(const Column& column, const Value& value) {
    if (column.type == ColumnType::kText || column.type == ColumnType::kMemo) {
        return std::holds_alternative<std::u16string>(value.Get());
    }
    return IsLongValue(column.type) && std::holds_alternative<Binary>(value.Get());
}

// A value of a fixed length is filled up: text with blanks, bytes with zeros.
void FillUp(const Column& column, Version version, Value& value) {
    if (!column.fixed) return;
    if (const auto* text = std::get_if<std::u16string>(&value.Get())) {
        std::u16string padded = *text;
        padded.resize(column.length / (version == Version::kJet3 ? 1U : 2U), u' ');
        value = std::move(padded);
    } else if (const auto* bytes = std::get_if<Binary>(&value.Get())) {
        Binary padded = *bytes;
        padded.resize(column.length);
        value = std::move(padded);
    }
}

void AppendBytes(Bytes bytes, std::vector<std::byte>& into) {
    into.insert(into.end(), bytes.begin(), bytes.end());
}

void RequireSize(const Column& column, Bytes stored) {
    const std::uint32_t size = SizeOfType(column.type);
    if (size != 0 && stored.size() < size) {
        throw Error(ErrorKind::kDamaged,
                    "The file is damaged: a value of the field '" + column.name + "' is cut off.");
    }
}

template <typename T>
const T& Held(const Column& column, const Value& value) {
    const T* held = std::get_if<T>(&value.Get());
    if (held == nullptr) ThrowMismatch(column);
    return *held;
}

}  // namespace

std::uint32_t SizeOfType(ColumnType type) {
    switch (type) {
        case ColumnType::kByte:
            return 1;
        case ColumnType::kInteger:
            return 2;
        case ColumnType::kLong:
        case ColumnType::kSingle:
            return 4;
        case ColumnType::kCurrency:
        case ColumnType::kDouble:
        case ColumnType::kDate:
            return 8;
        case ColumnType::kGuid:
            return 16;
        case ColumnType::kDecimal:
            return kDecimalSize;
        default:
            return 0;
    }
}

Value DecodeValue(const Column& column, Bytes stored, Version version) {
    RequireSize(column, stored);
    switch (column.type) {
        case ColumnType::kByte:
            return std::int32_t{ReadU8(stored, 0)};
        case ColumnType::kInteger:
            return std::int32_t{static_cast<std::int16_t>(ReadU16(stored, 0))};
        case ColumnType::kLong:
            return static_cast<std::int32_t>(ReadU32(stored, 0));
        case ColumnType::kCurrency:
            return Currency{static_cast<std::int64_t>(ReadU64(stored, 0))};
        case ColumnType::kSingle:
            return std::bit_cast<float>(ReadU32(stored, 0));
        case ColumnType::kDouble:
            return std::bit_cast<double>(ReadU64(stored, 0));
        case ColumnType::kDate:
            return Date{std::bit_cast<double>(ReadU64(stored, 0))};
        case ColumnType::kText:
        case ColumnType::kMemo: {
            std::u16string text;
            DecodeText(stored, version, text);
            return text;
        }
        case ColumnType::kGuid: {
            Guid guid;
            std::copy_n(stored.begin(), guid.bytes.size(), guid.bytes.begin());
            return guid;
        }
        case ColumnType::kDecimal:
            return DecodeDecimal(column, stored);
        default:
            return Binary(stored.begin(), stored.end());
    }
}

Value ConvertForSearch(const Column& column, const Value& value) {
    if (column.type == ColumnType::kBoolean) return value.IsNull() ? Value() : value.AsBoolean();
    if (value.IsNull()) return {};
    switch (column.type) {
        case ColumnType::kByte:
            return ToRange(column, value, 0, std::numeric_limits<std::uint8_t>::max());
        case ColumnType::kInteger:
            return ToRange(column, value, std::numeric_limits<std::int16_t>::min(),
                           std::numeric_limits<std::int16_t>::max());
        case ColumnType::kLong:
            return value.AsLong();
        case ColumnType::kCurrency:
            return ToCurrency(column, value);
        case ColumnType::kSingle:
            return value.AsSingle();
        case ColumnType::kDouble:
            return value.AsDouble();
        case ColumnType::kDate:
            return Date{value.AsDouble()};
        case ColumnType::kText:
        case ColumnType::kMemo:
            return value.AsText();
        case ColumnType::kGuid:
            return ToGuid(column, value);
        case ColumnType::kDecimal:
            return ToDecimal(column, value);
        case ColumnType::kBinary:
        case ColumnType::kOle:
            return ToBinary(column, value);
        default:
            throw Error(ErrorKind::kUnsupported,
                        "The type of the field '" + column.name + "' is not known here.");
    }
}

Value ConvertForColumn(const Column& column, Value value, Version version) {
    if (column.type == ColumnType::kBoolean) return !value.IsNull() && value.AsBoolean();
    Value converted = IsAsHeld(column, value) ? std::move(value) : ConvertForSearch(column, value);
    if (const auto* text = std::get_if<std::u16string>(&converted.Get())) {
        const std::size_t size = text->size() * (version == Version::kJet3 ? 1 : 2);
        if (size > (column.type == ColumnType::kMemo ? kLongestLongValue : column.length)) {
            ThrowTooLong(column);
        }
    } else if (const auto* bytes = std::get_if<Binary>(&converted.Get())) {
        if (bytes->size() > (column.type == ColumnType::kOle ? kLongestLongValue : column.length)) {
            ThrowTooLong(column);
        }
    }
    FillUp(column, version, converted);
    return converted;
}

void EncodeValue(const Column& column, const Value& value, Version version,
                 std::vector<std::byte>& into) {
    switch (column.type) {
        case ColumnType::kByte:
            into.push_back(static_cast<std::byte>(Held<std::int32_t>(column, value)));
            break;
        case ColumnType::kInteger:
            AppendNumber(static_cast<std::uint16_t>(Held<std::int32_t>(column, value)), into);
            break;
        case ColumnType::kLong:
            AppendNumber(static_cast<std::uint32_t>(Held<std::int32_t>(column, value)), into);
            break;
        case ColumnType::kCurrency:
            AppendNumber(static_cast<std::uint64_t>(Held<Currency>(column, value).tenThousandths),
                         into);
            break;
        case ColumnType::kSingle:
            AppendNumber(std::bit_cast<std::uint32_t>(Held<float>(column, value)), into);
            break;
        case ColumnType::kDouble:
            AppendNumber(std::bit_cast<std::uint64_t>(Held<double>(column, value)), into);
            break;
        case ColumnType::kDate:
            AppendNumber(std::bit_cast<std::uint64_t>(Held<Date>(column, value).days), into);
            break;
        case ColumnType::kText:
            EncodeText(Held<std::u16string>(column, value), version,
                       column.compressed && !column.fixed, into);
            break;
        case ColumnType::kGuid:
            AppendBytes(Held<Guid>(column, value).bytes, into);
            break;
        case ColumnType::kDecimal:
            AppendDecimal(Held<Decimal>(column, value), into);
            break;
        default:
            AppendBytes(Held<Binary>(column, value), into);
            break;
    }
}

}  // namespace jet
