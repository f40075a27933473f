#include "worksheets/resources/RowOrder.h"

#include <gtest/gtest.h>

#include "support/print.h"

namespace {

struct PlaceCase {
    const char* text;
    std::optional<int> place;
};

class PlaceTable : public testing::TestWithParam<PlaceCase> {};

TEST_P(PlaceTable, ReadsTheTypedNumberInAListOfFive) {
    EXPECT_EQ(RowOrder::Place(QString::fromUtf8(GetParam().text), 5), GetParam().place)
        << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Texts, PlaceTable,
                         testing::Values(PlaceCase{"3", 3}, PlaceCase{"0", 1}, PlaceCase{"-4", 1},
                                         PlaceCase{"5", 5}, PlaceCase{"6", 5}, PlaceCase{"9999", 5},
                                         PlaceCase{"2.5", 2}, PlaceCase{"3.5", 4},
                                         PlaceCase{"9e99", 5}, PlaceCase{"", std::nullopt},
                                         PlaceCase{"abc", std::nullopt},
                                         PlaceCase{"2x", std::nullopt}));

TEST(NewPlace, Text_IsReadByItsLeadingNumber) {
    EXPECT_EQ(RowOrder::NewPlace(QStringLiteral("3"), 5), 3);
    EXPECT_EQ(RowOrder::NewPlace(QString(), 5), 1);
    EXPECT_EQ(RowOrder::NewPlace(QStringLiteral("0"), 5), 1);
    EXPECT_EQ(RowOrder::NewPlace(QStringLiteral("6"), 5), 6);
    EXPECT_EQ(RowOrder::NewPlace(QStringLiteral("7"), 5), 6);
    EXPECT_EQ(RowOrder::NewPlace(QStringLiteral("1"), 0), 1);
    EXPECT_EQ(RowOrder::NewPlace(QStringLiteral("2"), 0), 1);
}

}  // namespace
