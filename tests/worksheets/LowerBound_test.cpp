#include "worksheets/cost/LowerBound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "platform/text/Numbers.h"
#include "support/print.h"

namespace {

struct Case {
    float top;
    const char* shown;  // with the column's format
};

class NextLowerBoundTable : public testing::TestWithParam<Case> {};

TEST_P(NextLowerBoundTable, StartsJustAbove) {
    const QString text = NextLowerBound(GetParam().top);
    const QString shown =
        text.isEmpty() ? text : platform::Format(platform::Val(text), QStringLiteral("#,#.00"));
    EXPECT_EQ(shown.toStdString(), GetParam().shown) << GetParam().top;
}

INSTANTIATE_TEST_SUITE_P(Bounds, NextLowerBoundTable,
                         testing::Values(Case{0.9F, "1.00"}, Case{0.5F, ".51"}, Case{9, "10.00"},
                                         Case{5, "5.10"}, Case{10, "11.00"}, Case{99.5F, "100.00"},
                                         Case{9.5F, "9.60"}, Case{10.5F, "11.00"},
                                         Case{250, "251.00"}, Case{0.85F, "1.00"},
                                         Case{0.94F, "1.00"}, Case{0.96F, ".97"},
                                         Case{0.84F, ".85"}, Case{1, "1.10"}, Case{9.96F, "10.06"},
                                         Case{1000, "1,001.00"}, Case{9999998, "9,999,999.00"},
                                         Case{9999999, ""}, Case{1e10F, ""}, Case{0, ""},
                                         Case{-3, ""}, Case{0.001F, ".01"}));

TEST(NextLowerBound, PlainSums_AreTheTextsThemselves) {
    EXPECT_EQ(NextLowerBound(0.5F), QStringLiteral("0.51"));
    EXPECT_EQ(NextLowerBound(5), QStringLiteral("5.1"));
    EXPECT_EQ(NextLowerBound(9), QStringLiteral("10"));
    EXPECT_EQ(NextLowerBound(0.9F), QStringLiteral("1"));
}

TEST(NextLowerBound, Sums_AreFormedInDoubleFromTheSingleBound) {
    EXPECT_EQ(NextLowerBound(1.1F), platform::Str(double{1.1F} + 0.1));
}

TEST(NextLowerBound, NotANumber_IsEmpty) {
    EXPECT_TRUE(NextLowerBound(std::nanf("")).isEmpty());
    EXPECT_TRUE(NextLowerBound(INFINITY).isEmpty());
}

TEST(NextLowerBound, AnyBoundInUse_GivesALargerStart) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> exponent(-2, 6.99F);
    for (int i = 0; i < 20000; ++i) {
        const float top = std::pow(10.0F, exponent(random));
        ASSERT_GT(platform::Val(NextLowerBound(top)), double{top}) << top;
        ASSERT_LE(platform::Val(NextLowerBound(top)), double{top} + 1) << top;
    }
}

}  // namespace
