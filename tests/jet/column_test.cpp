// Values to and from the bytes of a column.
#include "values/column.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

#include "jet/convert.h"
#include "jet/error.h"

namespace jet {
namespace {

Column Make(ColumnType type, std::uint16_t length = 0) {
    Column column;
    column.name = "Field";
    column.type = type;
    column.length = length == 0 ? static_cast<std::uint16_t>(SizeOfType(type)) : length;
    return column;
}

ErrorKind KindOf(const Column& column, const Value& value) {
    try {
        static_cast<void>(ConvertForColumn(column, value, Version::kJet4));
    } catch (const Error& error) {
        return error.Kind();
    }
    ADD_FAILURE() << "the value was taken";
    return ErrorKind::kIo;
}

void ExpectRoundTrip(const Column& column, const Value& value) {
    for (const Version version : {Version::kJet3, Version::kJet4}) {
        std::vector<std::byte> bytes;
        EncodeValue(column, ConvertForColumn(column, value, version), version, bytes);
        EXPECT_EQ(DecodeValue(column, bytes, version), value);
    }
}

TEST(ColumnValue, EveryType_ReadsBackAsItWasWritten) {
    ExpectRoundTrip(Make(ColumnType::kByte), 255);
    ExpectRoundTrip(Make(ColumnType::kInteger), -32768);
    ExpectRoundTrip(Make(ColumnType::kLong), std::numeric_limits<std::int32_t>::min());
    ExpectRoundTrip(Make(ColumnType::kCurrency), Currency{-922337203685477});
    ExpectRoundTrip(Make(ColumnType::kSingle), 1.1F);
    ExpectRoundTrip(Make(ColumnType::kDouble), -1e300);
    ExpectRoundTrip(Make(ColumnType::kDate), Date{-1.25});
    ExpectRoundTrip(Make(ColumnType::kText, 100), u"Grüße");
    ExpectRoundTrip(Make(ColumnType::kText, 100), u"");
    ExpectRoundTrip(Make(ColumnType::kBinary, 10), Binary{std::byte{0}, std::byte{255}});
    Guid guid;
    for (std::size_t i = 0; i < 16; ++i) guid.bytes[i] = static_cast<std::byte>(i);
    ExpectRoundTrip(Make(ColumnType::kGuid), guid);
}

TEST(ColumnValue, Decimal_HasSignAndWordsInTheKnownOrder) {
    Column column = Make(ColumnType::kDecimal);
    column.precision = 18;
    column.scale = 2;
    std::vector<std::byte> bytes;
    EncodeValue(column, ConvertForColumn(column, -2.56, Version::kJet4), Version::kJet4, bytes);
    ASSERT_EQ(bytes.size(), 17U);
    EXPECT_EQ(bytes[0], std::byte{0x80});
    EXPECT_EQ(bytes[13], std::byte{0});
    EXPECT_EQ(bytes[14], std::byte{1});
    EXPECT_EQ(DecodeValue(column, bytes, Version::kJet4).AsText(), u"-2.56");
}

TEST(ColumnValue, Decimal_RoundsToItsScaleAndMindsItsPrecision) {
    Column column = Make(ColumnType::kDecimal);
    column.precision = 4;
    column.scale = 1;
    EXPECT_EQ(ConvertForColumn(column, 12.25, Version::kJet4).AsText(), u"12.3");
    EXPECT_EQ(ConvertForColumn(column, 7, Version::kJet4).AsText(), u"7");
    EXPECT_EQ(KindOf(column, 1000), ErrorKind::kOverflow);
}

TEST(ColumnValue, NumberOutsideTheRange_Overflows) {
    EXPECT_EQ(KindOf(Make(ColumnType::kByte), 256), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(Make(ColumnType::kByte), -1), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(Make(ColumnType::kInteger), 32768), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(Make(ColumnType::kLong), 2147483648.0), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(Make(ColumnType::kSingle), 1e39), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(Make(ColumnType::kCurrency), 1e15), ErrorKind::kOverflow);
}

TEST(ColumnValue, NumbersAreConverted_HalvesToEven) {
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kLong), 2.5, Version::kJet4), Value(2));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kLong), u"17", Version::kJet4), Value(17));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kCurrency), 0.00005, Version::kJet4),
              Value(Currency{0}));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kText, 20), 12, Version::kJet4), Value(u"12"));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kBoolean), -1, Version::kJet4), Value(true));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kBoolean), Value(), Version::kJet4), Value(false));
}

TEST(ColumnValue, WrongKind_IsAMismatch) {
    EXPECT_EQ(KindOf(Make(ColumnType::kLong), u"seven"), ErrorKind::kTypeMismatch);
    EXPECT_EQ(KindOf(Make(ColumnType::kBinary, 4), 7), ErrorKind::kTypeMismatch);
    EXPECT_EQ(KindOf(Make(ColumnType::kGuid), u"x"), ErrorKind::kTypeMismatch);
}

TEST(ColumnValue, TextBeyondTheLength_IsTooLong) {
    EXPECT_EQ(KindOf(Make(ColumnType::kText, 8), u"abcde"), ErrorKind::kTextTooLong);
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kText, 8), u"abcd", Version::kJet4),
              Value(u"abcd"));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kText, 8), u"abcdefgh", Version::kJet3),
              Value(u"abcdefgh"));
    EXPECT_EQ(KindOf(Make(ColumnType::kBinary, 1), Binary(2)), ErrorKind::kTextTooLong);
}

TEST(ColumnValue, FixedLength_IsFilledUp) {
    Column column = Make(ColumnType::kText, 8);
    column.fixed = true;
    EXPECT_EQ(ConvertForColumn(column, u"ab", Version::kJet4), Value(u"ab  "));
    column.type = ColumnType::kBinary;
    EXPECT_EQ(ConvertForColumn(column, Binary{std::byte{1}}, Version::kJet4),
              Value(Binary{std::byte{1}, {}, {}, {}, {}, {}, {}, {}}));
}

TEST(ColumnValue, CutOffNumber_IsDamage) {
    const std::vector<std::byte> bytes(3);
    EXPECT_THROW(static_cast<void>(DecodeValue(Make(ColumnType::kLong), bytes, Version::kJet4)),
                 Error);
}

Column MakeDecimal(std::uint8_t precision, std::uint8_t scale) {
    Column column = Make(ColumnType::kDecimal);
    column.precision = precision;
    column.scale = scale;
    return column;
}

std::u16string AsDecimalText(const Column& column, const Value& value) {
    return ConvertForColumn(column, value, Version::kJet4).AsText();
}

TEST(ColumnValue, Decimal_TakesNumbersAsTheyAreWritten) {
    const Column column = MakeDecimal(28, 4);
    EXPECT_EQ(AsDecimalText(column, u"-12.3456"), u"-12.3456");
    EXPECT_EQ(AsDecimalText(column, u"1000000000000000000000"), u"1000000000000000000000");
    EXPECT_EQ(AsDecimalText(column, 255.9999), u"255.9999");
    // Halves go away from zero, and what lies behind the first digit left out does not count.
    EXPECT_EQ(AsDecimalText(MakeDecimal(28, 1), u"0.25"), u"0.3");
    EXPECT_EQ(AsDecimalText(MakeDecimal(28, 1), u"0.2499"), u"0.2");
    EXPECT_EQ(AsDecimalText(MakeDecimal(28, 0), u"255.5"), u"256");
}

TEST(ColumnValue, Decimal_RefusesWhatIsNoneOrTooLong) {
    const Column column = MakeDecimal(28, 2);
    for (const char16_t* text : {u"1-", u"1-2", u"--1", u"1.2.3", u"12a", u"1:"}) {
        EXPECT_EQ(KindOf(column, text), ErrorKind::kTypeMismatch);
    }
    EXPECT_EQ(KindOf(column, std::u16string(40, u'9')), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(column, std::u16string(38, u'3')), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(MakeDecimal(3, 0), 1000), ErrorKind::kOverflow);
    // A file may say nothing of the digits.
    EXPECT_EQ(AsDecimalText(MakeDecimal(0, 0), 1000), u"1000");
}

TEST(ColumnValue, MoneyMadeOfDecimalDigits_KeepsThemAll) {
    const Column money = Make(ColumnType::kCurrency);
    const auto convert = [&](const Value& value) {
        return std::get<Currency>(ConvertForSearch(money, value).Get()).tenThousandths;
    };
    EXPECT_EQ(convert(u"922337203685477.5807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(convert(u"-922337203685477.5808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(convert(ParseDecimal("90071992547409.93005")), 900719925474099300);
    EXPECT_EQ(convert(ParseDecimal("90071992547409.93015")), 900719925474099302);
    EXPECT_EQ(convert(ParseDecimal("90071992547409.930050001")), 900719925474099301);
    EXPECT_EQ(KindOf(money, u"922337203685477.5808"), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(money, ParseDecimal("1e30")), ErrorKind::kOverflow);
    EXPECT_EQ(KindOf(money, u"a lot"), ErrorKind::kTypeMismatch);
}

TEST(ColumnValue, DecimalThatRoundsToZero_HasNoSign) {
    Column column = Make(ColumnType::kDecimal);
    column.precision = 18;
    column.scale = 2;
    EXPECT_EQ(ConvertForSearch(column, u"-0.001"), ConvertForSearch(column, 0));
}

TEST(ColumnValue, GuidsAndBytes_StandForEachOther) {
    Guid guid;
    guid.bytes[3] = std::byte{7};
    const Binary bytes(guid.bytes.begin(), guid.bytes.end());
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kGuid), bytes, Version::kJet4), Value(guid));
    EXPECT_EQ(ConvertForColumn(Make(ColumnType::kBinary, 16), guid, Version::kJet4), Value(bytes));
    EXPECT_EQ(KindOf(Make(ColumnType::kGuid), Binary(15)), ErrorKind::kTypeMismatch);
    EXPECT_EQ(KindOf(Make(ColumnType::kGuid), u"{00000000}"), ErrorKind::kTypeMismatch);
    EXPECT_EQ(KindOf(Make(ColumnType::kBinary, 16), 5), ErrorKind::kTypeMismatch);
}

TEST(ColumnValue, HalvesGoToTheEvenNeighbor_InMoneyToo) {
    const Column money = Make(ColumnType::kCurrency);
    EXPECT_EQ(ConvertForColumn(money, 0.00005, Version::kJet4), Value(Currency{0}));
    EXPECT_EQ(ConvertForColumn(money, 0.00035, Version::kJet4), Value(Currency{4}));
    EXPECT_EQ(ConvertForColumn(money, 0.00016, Version::kJet4), Value(Currency{2}));
    EXPECT_EQ(ConvertForColumn(money, -0.00026, Version::kJet4), Value(Currency{-3}));
}

TEST(ColumnValue, ToBeLookedFor_YesAndNoAreValuesAndNullIsNone) {
    const Column column = Make(ColumnType::kBoolean);
    EXPECT_EQ(ConvertForSearch(column, 5), Value(true));
    EXPECT_EQ(ConvertForSearch(column, Value()), Value());
    EXPECT_EQ(ConvertForColumn(column, Value(), Version::kJet4), Value(false));
    EXPECT_EQ(ConvertForSearch(Make(ColumnType::kOle), Binary(3)), Value(Binary(3)));
    EXPECT_EQ(ConvertForSearch(Make(ColumnType::kText, 4), u"longer"), Value(u"longer"));
}

TEST(ColumnValue, TypeThatIsNotKnown_IsReadAsBytesAndNeverWritten) {
    const Column column = Make(static_cast<ColumnType>(0x0E), 4);
    EXPECT_EQ(KindOf(column, 5), ErrorKind::kUnsupported);
    EXPECT_EQ(DecodeValue(column, Binary(4), Version::kJet4), Value(Binary(4)));
}

TEST(ColumnValue, EveryKindOfNumber_IsReadAsItWasWritten) {
    const std::pair<ColumnType, double> cases[] = {
        {ColumnType::kByte, 200},   {ColumnType::kInteger, -2},  {ColumnType::kLong, -70000},
        {ColumnType::kSingle, 0.5}, {ColumnType::kDouble, 1e99}, {ColumnType::kDate, 2.25}};
    for (const auto& [type, number] : cases) {
        const Column column = Make(type);
        std::vector<std::byte> bytes;
        EncodeValue(column, ConvertForColumn(column, number, Version::kJet4), Version::kJet4,
                    bytes);
        EXPECT_EQ(DecodeValue(column, bytes, Version::kJet4).AsDouble(), number);
    }
}

TEST(ColumnValue, EncodingAValueOfAnotherKind_IsAMismatch) {
    std::vector<std::byte> bytes;
    EXPECT_THROW(EncodeValue(Make(ColumnType::kLong), u"5", Version::kJet4, bytes), Error);
    EXPECT_THROW(EncodeValue(Make(ColumnType::kBinary, 4), 5, Version::kJet4, bytes), Error);
}

}  // namespace
}  // namespace jet
