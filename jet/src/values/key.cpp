// One part of a key:
//
//   null    00 ascending, FF descending
//   value   7F and the encoding, or 80 and the encoding in its descending form
//
// Numbers are big-endian with the sign turned so that unsigned bytes order them; the descending
// form of most types is the complement. Parts delimit themselves, so that a key of several columns
// is its parts one after the other, and the keys that agree in leading columns begin with the same
// bytes.
#include "values/key.h"

#include <algorithm>
#include <array>
#include <bit>
#include <compare>
#include <type_traits>

#include "jet/error.h"
#include "values/code_page.h"
#include "values/collation.h"
#include "values/guid.h"

namespace jet {

namespace {

constexpr std::uint16_t kEnglish = 0x0409;
constexpr std::size_t kBinaryPiece = 8;
constexpr std::byte kMorePieces{9};
constexpr std::byte kAscendingValue{0x7F};
constexpr std::byte kDescendingValue{0x80};

template <typename Unsigned>
void AppendBigEndian(Key& key, Unsigned bits, bool ascending) {
    if (!ascending) {
        bits = static_cast<Unsigned>(~bits);
    }
    for (int shift = static_cast<int>(sizeof(Unsigned)) * 8 - 8; shift >= 0; shift -= 8) {
        key.push_back(static_cast<std::byte>(bits >> shift & 0xFFU));
    }
}

template <typename Signed>
void AppendInteger(Key& key, Signed value, bool ascending) {
    using Unsigned = std::make_unsigned_t<Signed>;
    constexpr auto kSign = static_cast<Unsigned>(Unsigned{1} << (sizeof(Signed) * 8 - 1));
    AppendBigEndian(key, static_cast<Unsigned>(static_cast<Unsigned>(value) ^ kSign), ascending);
}

template <typename Bits>
void AppendFloat(Key& key, Bits bits, bool ascending) {
    constexpr auto kSign = static_cast<Bits>(Bits{1} << (sizeof(Bits) * 8 - 1));
    AppendBigEndian(
        key, (bits & kSign) != 0 ? static_cast<Bits>(~bits) : static_cast<Bits>(bits | kSign),
        ascending);
}

// Pieces of eight bytes, each followed by 9, the last one filled up and followed by its length.
void AppendPieces(Key& key, Bytes value, bool ascending) {
    const std::byte mask = ascending ? std::byte{0} : std::byte{0xFF};
    while (!value.empty()) {
        const std::size_t size = std::min(value.size(), kBinaryPiece);
        for (std::size_t i = 0; i < kBinaryPiece; ++i) {
            key.push_back((i < size ? value[i] : std::byte{0}) ^ mask);
        }
        value = value.subspan(size);
        key.push_back(value.empty() ? static_cast<std::byte>(size) ^ mask : kMorePieces);
    }
}

// A key has the bytes of an identifier in the order of its text.
void AppendGuid(Key& key, const Guid& guid, bool ascending) {
    std::array<std::byte, 16> ordered{};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        ordered[i] = guid.bytes[kGuidTextOrder[i]];
    }
    AppendPieces(key, ordered, ascending);
}

// The sign byte is the same in both directions, so that a descending index has the negative numbers
// first all the same. That is how existing files are ordered.
void AppendDecimal(Key& key, const Decimal& value, bool ascending) {
    const std::byte mask = value.negative == ascending ? std::byte{0xFF} : std::byte{0};
    key.push_back(value.negative ? std::byte{0} : std::byte{0xFF});
    for (const std::uint8_t byte : value.magnitude) {
        key.push_back(std::byte{byte} ^ mask);
    }
}

void AppendText(Key& key, std::u16string_view text, bool ascending, Version version) {
    if (version == Version::kJet3) {
        AppendGeneral97(key, EncodeCodePage(text), ascending);
    } else {
        AppendGeneralLegacy(key, text, ascending);
    }
}

template <typename T>
const T& Get(const Value& value) {
    const T* found = std::get_if<T>(&value.Get());
    if (found == nullptr) {
        throw Error(ErrorKind::kTypeMismatch, "The value does not have the type of its column.");
    }
    return *found;
}

void AppendValue(Key& key, const KeyColumn& column, const Value& value, Version version) {
    const bool up = column.ascending;
    switch (column.type) {
        case ColumnType::kBoolean:
            key.push_back(Get<bool>(value) == up ? std::byte{0} : std::byte{0xFF});
            break;
        case ColumnType::kByte:
            AppendBigEndian(key, static_cast<std::uint8_t>(Get<std::int32_t>(value)), up);
            break;
        case ColumnType::kInteger:
            AppendInteger(key, static_cast<std::int16_t>(Get<std::int32_t>(value)), up);
            break;
        case ColumnType::kLong:
            AppendInteger(key, Get<std::int32_t>(value), up);
            break;
        case ColumnType::kCurrency:
            AppendInteger(key, Get<Currency>(value).tenThousandths, up);
            break;
        case ColumnType::kSingle:
            AppendFloat(key, std::bit_cast<std::uint32_t>(Get<float>(value)), up);
            break;
        case ColumnType::kDouble:
            AppendFloat(key, std::bit_cast<std::uint64_t>(Get<double>(value)), up);
            break;
        case ColumnType::kDate:
            AppendFloat(key, std::bit_cast<std::uint64_t>(Get<Date>(value).days), up);
            break;
        case ColumnType::kBinary:
            AppendPieces(key, Get<Binary>(value), up);
            break;
        case ColumnType::kGuid:
            AppendGuid(key, Get<Guid>(value), up);
            break;
        case ColumnType::kDecimal:
            AppendDecimal(key, Get<Decimal>(value), up);
            break;
        case ColumnType::kText:
        case ColumnType::kMemo:
            AppendText(key, Get<std::u16string>(value), up, version);
            break;
        default:
            throw Error(ErrorKind::kUnsupported, "A column of this type cannot be indexed.");
    }
}

std::optional<std::string> TextObstacle(const CollationId& collation, Version version) {
    // Some programs leave the language out, meaning the usual one of the format.
    const bool english = collation.language == kEnglish || collation.language == 0;
    const bool known = version == Version::kJet3
                           ? english && (collation.codePage == 1252 || collation.codePage == 0)
                           : english && collation.version == 0;
    if (known) {
        return std::nullopt;
    }
    return "its text is sorted by the rules of language " + std::to_string(collation.language) +
           (version == Version::kJet3
                ? ", code page " + std::to_string(collation.codePage)
                : ", version " + std::to_string(unsigned{collation.version})) +
           ", which are not known here";
}

}  // namespace

std::optional<std::string> KeyObstacle(const KeyColumn& column, Version version) {
    switch (column.type) {
        case ColumnType::kBoolean:
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong:
        case ColumnType::kCurrency:
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate:
        case ColumnType::kBinary:
        case ColumnType::kGuid:
            return std::nullopt;
        case ColumnType::kDecimal:
            if (version == Version::kJet4) {
                return std::nullopt;
            }
            break;
        case ColumnType::kMemo:
            if (version == Version::kJet3) {
                break;
            }
            return TextObstacle(column.collation, version);
        case ColumnType::kText:
            return TextObstacle(column.collation, version);
        default:
            break;
    }
    return "a column of type " + std::to_string(static_cast<unsigned>(column.type)) +
           " cannot be indexed";
}

namespace {

void RequireKeys(const KeyColumn& column, Version version) {
    if (const auto obstacle = KeyObstacle(column, version)) {
        throw Error(ErrorKind::kUnsupported, "No index key can be made: " + *obstacle + ".");
    }
}

}  // namespace

void AppendKeyPart(Key& key, const KeyColumn& column, const Value& value, Version version) {
    RequireKeys(column, version);
    if (value.IsNull()) {
        if (column.type != ColumnType::kBoolean) {
            key.push_back(column.ascending ? std::byte{0x00} : std::byte{0xFF});
            return;
        }
        key.push_back(column.ascending ? kAscendingValue : kDescendingValue);
        AppendValue(key, column, Value(false), version);  // yes/no columns know no null
        return;
    }
    key.push_back(column.ascending ? kAscendingValue : kDescendingValue);
    AppendValue(key, column, value, version);
}

void AppendKeyStart(Key& key, const KeyColumn& column, std::u16string_view text, Version version) {
    RequireKeys(column, version);
    key.push_back(column.ascending ? kAscendingValue : kDescendingValue);
    if (version == Version::kJet3) {
        AppendText(key, text, column.ascending, version);
    } else {
        AppendGeneralLegacyStart(key, text, column.ascending);
    }
}

int CompareText(std::u16string_view left, std::u16string_view right, Version version) {
    Key leftKey;
    Key rightKey;
    AppendText(leftKey, left, true, version);
    AppendText(rightKey, right, true, version);
    const auto order = std::lexicographical_compare_three_way(leftKey.begin(), leftKey.end(),
                                                              rightKey.begin(), rightKey.end());
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

}  // namespace jet
