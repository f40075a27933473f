// Text, dates and GUIDs as other code has them.
#include "jet/convert.h"

#include <gtest/gtest.h>

#include <cmath>

#include "jet/error.h"
#include "sample_table.h"

namespace jet {
namespace {

TEST(ConvertText, EveryLengthOfCharacter_ComesBack) {
    const std::u16string text = u"a\u00E9\u20AC\U0001F332z";
    const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\xB2z";
    EXPECT_EQ(ToUtf8(text), utf8);
    EXPECT_EQ(ToUtf16(utf8), text);
    std::string reused = "something longer than what it takes";
    ToUtf8(u"", reused);
    EXPECT_EQ(reused, "");
}

TEST(ConvertText, OneLetterBeyondAscii_AtAnyPlace_ComesBack) {
    for (std::size_t place = 0; place < 40; ++place) {
        std::u16string text(40, u'x');
        text[place] = u'\u00E4';
        std::string utf8(40, 'x');
        utf8.replace(place, 1, "\xC3\xA4");
        EXPECT_EQ(ToUtf8(text), utf8);
        EXPECT_EQ(ToUtf16(utf8), text);
    }
}

TEST(ConvertText, WhatIsNoCharacter_IsReplaced) {
    const std::u16string halves = {0xD800, u'a', 0xDC00};
    EXPECT_EQ(ToUtf8(halves),
              "\xEF\xBF\xBD"
              "a\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf16("a\xFF"
                      "b"),
              u"a\uFFFDb");
    // Half of a pair, a slash in three bytes, and what lies behind the last character.
    for (const char* none : {"\xED\xA0\x80", "\xE0\x80\xAF", "\xF4\x90\x80\x80"}) {
        EXPECT_EQ(ToUtf16(none), u"\uFFFD");
    }
    EXPECT_EQ(ToUtf16("\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF"), u"\uD7FF\uE000\U0010FFFF");
}

TEST(ConvertDate, DaysAndTimes_ComeBack) {
    EXPECT_EQ(ToDate({}), Date{0});
    EXPECT_EQ(ToDate({.year = 2000, .month = 2, .day = 29}), Date{36585});
    EXPECT_EQ(ToDate({.year = 1899, .month = 12, .day = 29, .hour = 6}), Date{-1.25});
    EXPECT_EQ(ToDate({.year = 100, .month = 1, .day = 1}), Date{-657434});
    for (const CalendarTime& time :
         {CalendarTime{
              .year = 9999, .month = 12, .day = 31, .hour = 23, .minute = 59, .second = 59},
          CalendarTime{.year = 1600, .month = 7, .day = 4, .hour = 1, .minute = 2, .second = 3},
          CalendarTime{.year = 2026, .month = 3, .day = 1, .hour = 12, .millisecond = 7}}) {
        EXPECT_EQ(ToCalendar(ToDate(time)), time) << time.year;
    }
}

TEST(ConvertDate, TimesAreRounded_IntoTheNextDayIfNeedBe) {
    const CalendarTime next = {.year = 2000, .month = 3, .day = 1};
    EXPECT_EQ(ToCalendar(Date{36586 - 1e-10}), next);
}

TEST(ConvertDate, DaysThatAreNone_AreRefused) {
    for (const CalendarTime& time :
         {CalendarTime{.year = 2001, .month = 2, .day = 29}, CalendarTime{.year = 99},
          CalendarTime{.year = 10000}, CalendarTime{.month = 13}, CalendarTime{.day = 0},
          CalendarTime{.hour = 24}, CalendarTime{.second = -1},
          CalendarTime{.millisecond = 1000}}) {
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(ToDate(time)); }), ErrorKind::kOverflow);
    }
    for (const double days : {-657435.0, 2958466.0, 1e300, -1e300, std::nan("")}) {
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(ToCalendar(Date{days})); }), ErrorKind::kOverflow)
            << days;
    }
}

TEST(ConvertGuid, Text_ComesBack) {
    const std::string text = "{00112233-4455-6677-8899-AABBCCDDEEFF}";
    const Guid guid = ParseGuid(text);
    EXPECT_EQ(guid.bytes[0], std::byte{0x33});
    EXPECT_EQ(guid.bytes[15], std::byte{0xFF});
    EXPECT_EQ(GuidText(guid), text);
    EXPECT_EQ(ParseGuid("00112233-4455-6677-8899-aabbccddeeff"), guid);
    EXPECT_EQ(Value(guid).AsText(), u"{00112233-4455-6677-8899-AABBCCDDEEFF}");
}

TEST(ConvertGuid, OtherTexts_AreRefused) {
    for (const char* text :
         {"", "{}", "00112233", "{00112233-4455-6677-8899-AABBCCDDEEFF",
          "00112233x4455-6677-8899-AABBCCDDEEFF", "0011223G-4455-6677-8899-AABBCCDDEEFF"}) {
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(ParseGuid(text)); }), ErrorKind::kTypeMismatch);
    }
}

TEST(ConvertDecimal, Text_ComesBack) {
    for (const char* text : {"0", "-12.5", "1234567890123456789012345678.123456"}) {
        EXPECT_EQ(ToUtf8(Value(ParseDecimal(text)).AsText()), text);
    }
    EXPECT_EQ(Value(ParseDecimal(" 1.50e3 ")).AsText(), u"1500");
}

TEST(ConvertDecimal, OtherTexts_AreRefused) {
    for (const char* text : {"", "-", "1,5", "one", "nan", "inf", "1.2.3", "1e"}) {
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(ParseDecimal(text)); }), ErrorKind::kTypeMismatch)
            << text;
    }
    EXPECT_EQ(ErrorOf([] { static_cast<void>(ParseDecimal("1e60")); }), ErrorKind::kOverflow);
}

}  // namespace
}  // namespace jet
