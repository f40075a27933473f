#include "review/difference_words.h"

#include <gtest/gtest.h>

namespace {

using review::Difference;

Difference Changed(std::string_view what, const char* field, review::Content older,
                   review::Content newer) {
    Difference difference;
    difference.what = what;
    difference.zone = "Wet Prairie";
    difference.field = field;
    difference.older = std::move(older);
    difference.newer = std::move(newer);
    return difference;
}

TEST(DifferenceWords, CostsSizesAndValues_StandAsTheWorksheetsShowThem) {
    Difference cost = Changed("cost", "Cost", 310.0F, 3200.0F);
    cost.sizeClass = 3;
    review::DifferenceWords words = review::WordsOf(cost);
    EXPECT_EQ(words.place, "Wet Prairie, class 3, cost");
    EXPECT_EQ(words.older, "$310");
    EXPECT_EQ(words.newer, "$3,200");
    EXPECT_TRUE(words.isFigure);

    words = review::WordsOf(Changed("cost", "TopSize", 300.0F, 1000.0F));
    EXPECT_EQ(words.place, "Wet Prairie, largest size");
    EXPECT_EQ(words.older + " " + words.newer, "300.00 1,000.00");

    Difference value = Changed("nvc", "FIL4", -820.0F, -8.0F);
    value.fil = 4;
    words = review::WordsOf(value);
    EXPECT_EQ(words.what, "value");
    EXPECT_EQ(words.place, "Wet Prairie, FIL 4");
    EXPECT_EQ(words.older + " " + words.newer, "-820.00 -8.00");
}

TEST(DifferenceWords, WhatRoundingWouldHide_IsShownInFull) {
    const review::DifferenceWords words = review::WordsOf(Changed("nvc", "FIL1", 1.001F, 1.002F));
    EXPECT_EQ(words.older + " " + words.newer, "1.001 1.002");
}

TEST(DifferenceWords, NothingBesideAFigure_CountsAs0) {
    const review::DifferenceWords words = review::WordsOf(Changed("cost", "Cost", {}, 25.0F));
    EXPECT_EQ(words.older + " " + words.newer, "$0 $25");
}

TEST(DifferenceWords, Texts_StayAsTheyAre) {
    const review::DifferenceWords words =
        review::WordsOf(Changed("property", "SRDataSource", {}, std::string("Rate sheets")));
    EXPECT_EQ(words.place, "Wet Prairie, source of data");
    EXPECT_EQ(words.older, "");
    EXPECT_EQ(words.newer, "Rate sheets");
    EXPECT_FALSE(words.isFigure);
}

}  // namespace
