#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "support/print.h"
#include "worksheets/nvc/NVCTotals.h"

namespace {

TEST(NVCTotals, SumBelowHalfADollar_ShowsWholeDollarsBothWays) {
    std::vector<float> singles(14, 0);
    singles[0] = 1000;
    singles[13] = 234.4F;
    std::vector<double> doubles(singles.begin(), singles.end());
    EXPECT_EQ(NVCTotals::Text(NVCTotals::Loaded(singles)), QStringLiteral("$1,234"));
    EXPECT_EQ(NVCTotals::Text(NVCTotals::Typed(doubles)), QStringLiteral("$1,234"));
}

TEST(NVCTotals, Loaded_AddsSinglesInResourceOrder) {
    EXPECT_EQ(NVCTotals::Loaded(std::vector<float>{16777216.0F, 1.0F, 1.0F}), 16777216.0);
    EXPECT_EQ(NVCTotals::Loaded(std::vector<float>{1.0F, 1.0F, 16777216.0F}), 16777218.0);
}

TEST(NVCTotals, Typed_AddsDoubles) {
    EXPECT_EQ(NVCTotals::Typed(std::vector<double>{16777216.0, 1.0, 1.0}), 16777218.0);
}

TEST(NVCTotals, Losses_ShowTheMinusSignFirst) {
    EXPECT_EQ(NVCTotals::Text(-1234.4), QStringLiteral("-$1,234"));
    EXPECT_EQ(NVCTotals::Text(0), QStringLiteral("$0"));
}

TEST(NVCTotals, SumBeyondTheSingles_IsSaidSo) {
    const std::vector<float> huge(2, std::numeric_limits<float>::max());
    EXPECT_EQ(NVCTotals::Text(NVCTotals::Loaded(huge)), QStringLiteral("too large"));
}

}  // namespace
