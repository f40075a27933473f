#include "worksheets/nvc/RoundSignificant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "platform/RuntimeError.h"

namespace {

struct Case {
    double number;
    int digits;
    double rounded;
};

class RoundSignificantTable : public testing::TestWithParam<Case> {};

TEST_P(RoundSignificantTable, RoundsToTheDigits) {
    const Case& entry = GetParam();
    EXPECT_DOUBLE_EQ(RoundSignificant(entry.number, entry.digits), entry.rounded);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, RoundSignificantTable,
    testing::Values(Case{12345, 3, 12300}, Case{99960, 3, 100000}, Case{100, 3, 100},
                    Case{0.5, 3, 0.5}, Case{-1234.5, 3, -1230}, Case{0, 3, 0},
                    Case{0.12345, 3, 0.123}, Case{1, 3, 1}, Case{999.5, 3, 1000},
                    Case{12350, 3, 12400}, Case{12250, 3, 12200}, Case{12450, 3, 12400},
                    Case{0.0005, 3, 0}, Case{0.0015, 3, 0.002}, Case{-12450, 3, -12400},
                    Case{3000.8, 3, 3000}, Case{12345, 1, 10000}, Case{12345, 5, 12345}));

TEST(RoundSignificant, TinyNegative_KeepsItsSignAtZero) {
    const double rounded = RoundSignificant(-0.0004, 3);
    EXPECT_EQ(rounded, 0);
    EXPECT_TRUE(std::signbit(rounded));
}

TEST(RoundSignificant, Zero_HasNoSign) {
    EXPECT_FALSE(std::signbit(RoundSignificant(0, 3)));
}

TEST(RoundSignificant, TooManyDigits_Overflows) {
    EXPECT_THROW(RoundSignificant(1e12, 11), platform::RuntimeError);
}

TEST(RoundSignificant, AnyNumber_IsNearAndStaysWhenRoundedAgain) {
    std::mt19937 random(20251);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    std::uniform_int_distribution<int> exponent(-3, 12);
    for (int i = 0; i < 20000; ++i) {
        const double number = mantissa(random) * std::pow(10, exponent(random));
        const double rounded = RoundSignificant(number, 3);
        const double unit = std::max(1.0, std::fabs(number)) / 100;
        ASSERT_NEAR(rounded, number, unit * 0.5001) << number;
        ASSERT_NEAR(RoundSignificant(rounded, 3), rounded, std::fabs(rounded) * 1e-12) << number;
        ASSERT_DOUBLE_EQ(RoundSignificant(-number, 3), -rounded);
    }
}

}  // namespace
