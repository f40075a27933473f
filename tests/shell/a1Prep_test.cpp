#include "shell/a1Prep.h"

#include <gtest/gtest.h>

namespace {

using a1Prep::FirstSize;
using a1Prep::FirstSizeFor;

TEST(a1Prep, FirstSizeFor_ScreensBelow600Lines_LeavesTheFrame) {
    EXPECT_EQ(FirstSizeFor(7200), FirstSize::kAsItIs);
    EXPECT_EQ(FirstSizeFor(7999), FirstSize::kAsItIs);
}

TEST(a1Prep, FirstSizeFor_BothLimits_CountToTheLowerSide) {
    EXPECT_EQ(FirstSizeFor(8000), FirstSize::kAsItIs);
    EXPECT_EQ(FirstSizeFor(8001), FirstSize::kMaximized);
    EXPECT_EQ(FirstSizeFor(9120), FirstSize::kMaximized);
    EXPECT_EQ(FirstSizeFor(9121), FirstSize::kWorkingSize);
}

TEST(a1Prep, FirstSizeFor_UsualScreens_MaximizesOnlyOn600Lines) {
    EXPECT_EQ(FirstSizeFor(600 * 15), FirstSize::kMaximized);
    EXPECT_EQ(FirstSizeFor(768 * 15), FirstSize::kWorkingSize);
    EXPECT_EQ(FirstSizeFor(1080 * 15), FirstSize::kWorkingSize);
}

}  // namespace
