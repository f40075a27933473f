// Keys of every type against keys found in files that the original engines wrote.
#include "values/key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "jet/error.h"
#include "support/paths.h"
#include "tab_separated.h"
#include "values/collation.h"

namespace jet {
namespace {

struct Vector {
    std::string engine, type, direction, value, key;
};

std::vector<Vector> ReadVectors() {
    std::vector<Vector> vectors;
    for (const auto& fields :
         tarn_test::ReadTabSeparated(support::SourceFolder() / "jet/data/key_vectors.tsv", 5)) {
        vectors.push_back({fields[0], fields[1], fields[2], fields[3], fields[4]});
    }
    return vectors;
}

std::string FromHex(const std::string& hex) {
    return tarn_test::FromHex<std::string>(hex);
}

std::string ToHex(const Key& key) {
    std::string hex;
    for (const std::byte byte : key) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        hex += kDigits[std::to_integer<unsigned>(byte) >> 4];
        hex += kDigits[std::to_integer<unsigned>(byte) & 15U];
    }
    return hex;
}

template <typename T>
T Read(const std::string& bytes) {
    T value{};
    std::memcpy(&value, bytes.data(), std::min(sizeof value, bytes.size()));
    return value;
}

ColumnType TypeNamed(const std::string& name) {
    static const std::map<std::string, ColumnType> kTypes = {
        {"bool", ColumnType::kBoolean},      {"byte", ColumnType::kByte},
        {"int", ColumnType::kInteger},       {"long", ColumnType::kLong},
        {"currency", ColumnType::kCurrency}, {"single", ColumnType::kSingle},
        {"double", ColumnType::kDouble},     {"datetime", ColumnType::kDate},
        {"guid", ColumnType::kGuid},         {"binary", ColumnType::kBinary},
        {"numeric", ColumnType::kDecimal},   {"text", ColumnType::kText},
        {"memo", ColumnType::kMemo}};
    return kTypes.at(name);
}

// A stored decimal: a sign byte and four little-endian words, the most significant first.
Decimal AsDecimal(const std::string& bytes) {
    Decimal decimal;
    decimal.negative = bytes[0] != 0;
    for (std::size_t i = 0; i < 16; ++i) {
        decimal.magnitude[i] = static_cast<std::uint8_t>(bytes[1 + i / 4 * 4 + (3 - i % 4)]);
    }
    return decimal;
}

Value ValueOf(ColumnType type, const std::string& field) {
    if (field == "NULL") {
        return {};
    }
    const std::string bytes = field == "EMPTY" ? "" : FromHex(field);
    switch (type) {
        case ColumnType::kBoolean:
            return field == "1";
        case ColumnType::kByte:
            return std::int32_t{static_cast<unsigned char>(bytes[0])};
        case ColumnType::kInteger:
            return std::int32_t{Read<std::int16_t>(bytes)};
        case ColumnType::kLong:
            return Read<std::int32_t>(bytes);
        case ColumnType::kCurrency:
            return Currency{Read<std::int64_t>(bytes)};
        case ColumnType::kSingle:
            return Read<float>(bytes);
        case ColumnType::kDouble:
            return Read<double>(bytes);
        case ColumnType::kDate:
            return Date{Read<double>(bytes)};
        case ColumnType::kGuid: {
            Guid guid;
            std::memcpy(guid.bytes.data(), bytes.data(), guid.bytes.size());
            return guid;
        }
        case ColumnType::kDecimal:
            return AsDecimal(bytes);
        case ColumnType::kBinary: {
            Binary binary(bytes.size());
            std::transform(bytes.begin(), bytes.end(), binary.begin(),
                           [](char byte) { return static_cast<std::byte>(byte); });
            return binary;
        }
        default: {
            std::u16string text(bytes.size() / 2, u'\0');
            std::memcpy(text.data(), bytes.data(), text.size() * 2);
            return text;
        }
    }
}

Key KeyOf(const Vector& vector) {
    KeyColumn column;
    column.type = TypeNamed(vector.type);
    column.ascending = vector.direction == "A";
    const Version version = vector.engine == "3" ? Version::kJet3 : Version::kJet4;
    Key key;
    if (vector.engine == "3" && vector.type == "text" && vector.value != "NULL") {
        key.push_back(column.ascending ? std::byte{0x7F} : std::byte{0x80});
        AppendGeneral97(key, vector.value == "EMPTY" ? "" : FromHex(vector.value),
                        column.ascending);
        return key;
    }
    AppendKeyPart(key, column, ValueOf(column.type, vector.value), version);
    return key;
}

TEST(Key, Vectors_AllRegenerateByteForByte) {
    int matched = 0;
    std::vector<Vector> differing;
    for (const Vector& vector : ReadVectors()) {
        if (ToHex(KeyOf(vector)) == vector.key) {
            ++matched;
        } else {
            differing.push_back(vector);
        }
    }
    // One text of 255 characters was entered by another program, which counts letters that stand
    // for two differently.
    EXPECT_EQ(matched, 2904);
    ASSERT_EQ(differing.size(), 1U);
    Key variant{std::byte{0x7F}};
    const Value text = ValueOf(ColumnType::kText, differing[0].value);
    AppendGeneralLegacy(variant, text.AsText(), true, LetterCount::kCharacters);
    EXPECT_EQ(ToHex(variant), differing[0].key);
}

Key LongKey(std::int32_t value, bool ascending = true) {
    Key key;
    AppendKeyPart(key, {ColumnType::kLong, ascending, {}}, value, Version::kJet4);
    return key;
}

TEST(Key, Long_OrdersLikeNumbers) {
    const std::int32_t numbers[] = {INT32_MIN, -2, -1, 0, 1, 255, 256, INT32_MAX};
    for (std::size_t i = 1; i < std::size(numbers); ++i) {
        EXPECT_LT(LongKey(numbers[i - 1]), LongKey(numbers[i]));
        EXPECT_GT(LongKey(numbers[i - 1], false), LongKey(numbers[i], false));
    }
}

TEST(Key, Null_ComesFirstAscendingAndLastDescending) {
    Key ascending;
    AppendKeyPart(ascending, {ColumnType::kText, true, {}}, Value(), Version::kJet4);
    EXPECT_EQ(ToHex(ascending), "00");
    Key descending;
    AppendKeyPart(descending, {ColumnType::kText, false, {}}, Value(), Version::kJet4);
    EXPECT_EQ(ToHex(descending), "FF");
}

TEST(Key, TwoColumns_FollowWithoutSeparator) {
    Key key = LongKey(5);
    AppendKeyPart(key, {ColumnType::kLong, false, {}}, 7, Version::kJet4);
    EXPECT_EQ(ToHex(key), "7F80000005807FFFFFF8");
}

TEST(Key, WrongValueType_IsRefused) {
    Key key;
    EXPECT_THROW(AppendKeyPart(key, {ColumnType::kLong, true, {}}, Value(u"text"), Version::kJet4),
                 Error);
}

TEST(Key, Obstacle_NamesWhatIsNotSupported) {
    EXPECT_FALSE(KeyObstacle({ColumnType::kText, true, {}}, Version::kJet3));
    EXPECT_FALSE(KeyObstacle({ColumnType::kMemo, true, {}}, Version::kJet4));
    EXPECT_TRUE(KeyObstacle({ColumnType::kMemo, true, {}}, Version::kJet3));
    EXPECT_TRUE(KeyObstacle({ColumnType::kDecimal, true, {}}, Version::kJet3));
    EXPECT_TRUE(KeyObstacle({ColumnType::kOle, true, {}}, Version::kJet4));
    EXPECT_TRUE(KeyObstacle({static_cast<ColumnType>(0x7E), true, {}}, Version::kJet4));
    const auto spanish = KeyObstacle({ColumnType::kText, true, {3082, 0, 1252}}, Version::kJet4);
    ASSERT_TRUE(spanish);
    EXPECT_NE(spanish->find("3082"), std::string::npos);
    EXPECT_TRUE(KeyObstacle({ColumnType::kText, true, {1033, 1, 1252}}, Version::kJet4));
    EXPECT_TRUE(KeyObstacle({ColumnType::kText, true, {1033, 0, 1250}}, Version::kJet3));
    Key key;
    EXPECT_THROW(
        AppendKeyPart(key, {ColumnType::kText, true, {3082, 0, 1252}}, Value(u"a"), Version::kJet4),
        Error);
}

}  // namespace
}  // namespace jet
