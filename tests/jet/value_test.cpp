// What values turn into, and the numbers of the errors.
#include "jet/value.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

#include "jet/error.h"

namespace jet {
namespace {

TEST(Value, NumbersAsWholeOnes_RoundHalvesToEven) {
    EXPECT_EQ(Value(2.5).AsLong(), 2);
    EXPECT_EQ(Value(3.5).AsLong(), 4);
    EXPECT_EQ(Value(-2.5).AsLong(), -2);
    EXPECT_EQ(Value(-0.4F).AsLong(), 0);
    EXPECT_EQ(Value(Currency{25000}).AsLong(), 2);
    EXPECT_EQ(Value(u" 17 ").AsLong(), 17);
    EXPECT_EQ(Value(true).AsLong(), -1);
}

TEST(Value, NumberThatDoesNotFit_IsAnOverflow) {
    for (const Value& value : {Value(3e9), Value(-2147483649.0), Value(u"1e400")}) {
        try {
            (void)value.AsLong();
            ADD_FAILURE() << "converted";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kOverflow);
        }
    }
    EXPECT_THROW((void)Value(1e300).AsSingle(), Error);
    // What is no finite number stays what it is: nothing was lost on the way.
    EXPECT_EQ(Value(std::numeric_limits<double>::infinity()).AsSingle(),
              std::numeric_limits<float>::infinity());
    EXPECT_THROW((void)Value(std::numeric_limits<double>::quiet_NaN()).AsLong(), Error);
}

TEST(Value, WhatIsNoNumber_IsAMismatch) {
    for (const Value& value : {Value(), Value(u"abc"), Value(u"12x"), Value(u""), Value(u"+"),
                               Value(u"  "), Value(u"\u0661"), Value(Binary(2)), Value(Guid{})}) {
        try {
            (void)value.AsDouble();
            ADD_FAILURE() << "converted";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kTypeMismatch);
        }
    }
}

TEST(Value, NumbersAsText_AreAsShortAsTheyCanBe) {
    EXPECT_EQ(Value(0.1F).AsText(), u"0.1");
    EXPECT_EQ(Value(100000.0).AsText(), u"100000");
    EXPECT_EQ(Value(-5).AsText(), u"-5");
    EXPECT_EQ(Value(Currency{-12500}).AsText(), u"-1.25");
    EXPECT_EQ(Value(Currency{5}).AsText(), u"0.0005");
    Decimal decimal;
    decimal.negative = true;
    decimal.scale = 2;
    decimal.magnitude[14] = 1;
    decimal.magnitude[15] = 4;
    EXPECT_EQ(Value(decimal).AsText(), u"-2.6");
    EXPECT_THROW((void)Value().AsText(), Error);
}

TEST(Value, Copy_OfEveryKind_IsEqual) {
    for (const Value& value :
         {Value(), Value(true), Value(7), Value(Currency{3}), Value(1.5F), Value(2.5),
          Value(Date{1}), Value(u"text"), Value(Binary(5)), Value(Guid{}), Value(Decimal{})}) {
        Value copy = value;
        EXPECT_EQ(copy, value);
        copy = Value(u"other");
        copy = value;
        EXPECT_EQ(copy, value);
    }
}

TEST(Value, EveryKindOfNumber_IsTheSameAsADouble) {
    Decimal decimal;
    decimal.scale = 1;
    decimal.magnitude[15] = 25;
    EXPECT_EQ(Value(decimal).AsDouble(), 2.5);
    decimal.negative = true;
    EXPECT_EQ(Value(decimal).AsDouble(), -2.5);
    EXPECT_EQ(Value(false).AsDouble(), 0);
    EXPECT_EQ(Value(Date{36526.5}).AsDouble(), 36526.5);
    EXPECT_EQ(Value(u"+1.5e2").AsDouble(), 150);
    EXPECT_TRUE(Value(0.5).AsBoolean());
    EXPECT_FALSE(Value(false).AsBoolean());
}

TEST(Value, LargeAndSmallNumbersAsText_ReadBackAsTheSame) {
    EXPECT_EQ(Value(true).AsText(), u"True");
    EXPECT_EQ(Value(false).AsText(), u"False");
    EXPECT_EQ(Value(1e15).AsText(), u"1e+15");
    EXPECT_EQ(Value(1e-6).AsText(), u"1e-06");
    EXPECT_EQ(Value(0.0).AsText(), u"0");
    EXPECT_EQ(Value(Date{0.25}).AsText(), u"0.25");
    Decimal decimal;
    decimal.magnitude.fill(0xFF);
    EXPECT_EQ(Value(decimal).AsText(), u"340282366920938463463374607431768211455");
    Decimal nothing;
    nothing.negative = true;
    EXPECT_EQ(Value(nothing).AsText(), u"0");
}

TEST(Error, EveryKind_HasItsCustomaryNumber) {
    const std::vector<std::pair<ErrorKind, int>> numbers = {
        {ErrorKind::kFileNotFound, 3024},    {ErrorKind::kFileInUse, 3045},
        {ErrorKind::kNotADatabase, 3343},    {ErrorKind::kUnsupportedVersion, 3343},
        {ErrorKind::kEncrypted, 3031},       {ErrorKind::kDamaged, 3049},
        {ErrorKind::kReadOnly, 3051},        {ErrorKind::kPermissionDenied, 70},
        {ErrorKind::kDiskFull, 3026},        {ErrorKind::kIo, 57},
        {ErrorKind::kFileTooLarge, 3183},    {ErrorKind::kNoCurrentRecord, 3021},
        {ErrorKind::kDuplicateKey, 3022},    {ErrorKind::kNoEditBegun, 3020},
        {ErrorKind::kNullNotAllowed, 3058},  {ErrorKind::kNoSuchTable, 3078},
        {ErrorKind::kNoSuchIndex, 3015},     {ErrorKind::kNoSuchField, 3265},
        {ErrorKind::kAlreadyExists, 3010},   {ErrorKind::kBadName, 3125},
        {ErrorKind::kSyntax, 3075},          {ErrorKind::kTypeMismatch, 13},
        {ErrorKind::kOverflow, 6},           {ErrorKind::kTextTooLong, 3163},
        {ErrorKind::kRecordTooLarge, 3047},  {ErrorKind::kUnsupported, 3251},
        {ErrorKind::kClosed, 3420},          {ErrorKind::kOutOfMemory, 7},
        {ErrorKind::kTransactionOpen, 3246}, {ErrorKind::kNoTransaction, 3034}};
    for (const auto& [kind, number] : numbers) EXPECT_EQ(ErrorNumber(kind), number);
}

}  // namespace
}  // namespace jet
