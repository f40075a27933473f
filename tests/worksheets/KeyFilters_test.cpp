#include <gtest/gtest.h>

#include "worksheets/resources/KeyFilters.h"

namespace {

TEST(TakesDigits, EachCharacterCode_OnlyDigitsOfThePrintableOnesPass) {
    for (char16_t code = 0; code < 0x300; ++code) {
        const bool printable = code >= 32 && code <= 126;
        const bool digit = code >= u'0' && code <= u'9';
        EXPECT_EQ(KeyFilters::TakesDigits(QChar(code)), !printable || digit) << int{code};
    }
}

TEST(TakesDigits, Text_PassesWhenEveryCharacterDoes) {
    EXPECT_TRUE(KeyFilters::TakesDigits(QStringLiteral("123")));
    EXPECT_TRUE(KeyFilters::TakesDigits(QString()));
    EXPECT_FALSE(KeyFilters::TakesDigits(QStringLiteral("1.5")));
    EXPECT_FALSE(KeyFilters::TakesDigits(QStringLiteral("-1")));
}

}  // namespace
