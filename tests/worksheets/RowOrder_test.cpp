#include "worksheets/resources/RowOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "support/print.h"
namespace {

std::vector<int> FromOne(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

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

TEST(Move, Up_ShiftsThePassedRowsDown) {
    std::vector<int> numbers = FromOne(5);
    RowOrder::Move(numbers, 4, 2);
    EXPECT_EQ(numbers, (std::vector<int>{1, 3, 4, 2, 5}));
}

TEST(Move, Down_ShiftsThePassedRowsUp) {
    std::vector<int> numbers = FromOne(5);
    RowOrder::Move(numbers, 2, 4);
    EXPECT_EQ(numbers, (std::vector<int>{1, 4, 2, 3, 5}));
}

TEST(Move, ToItself_ChangesNothing) {
    std::vector<int> numbers = FromOne(5);
    RowOrder::Move(numbers, 3, 3);
    EXPECT_EQ(numbers, FromOne(5));
}

// Sorting by the numbers is what moves a row; the rows carry a letter of their own here.
TEST(Move, AnySequenceOfMoves_LeavesOneToNWithoutGapsAndTheRowInItsPlace) {
    std::mt19937 random(11);
    for (int count = 1; count <= 30; ++count) {
        std::vector<int> rows = FromOne(count);
        std::uniform_int_distribution<int> any(1, count);
        for (int step = 0; step < 100; ++step) {
            const int from = any(random);
            const int to = any(random);
            const int moved = rows[static_cast<std::size_t>(from - 1)];
            std::vector<int> numbers = FromOne(count);
            RowOrder::Move(numbers, from, to);
            std::vector<int> after(rows.size());
            for (std::size_t row = 0; row < rows.size(); ++row) {
                after.at(static_cast<std::size_t>(numbers[row] - 1)) = rows[row];
            }
            std::sort(numbers.begin(), numbers.end());
            ASSERT_EQ(numbers, FromOne(count));
            ASSERT_EQ(after[static_cast<std::size_t>(to - 1)], moved);
            rows.erase(rows.begin() + from - 1);
            rows.insert(rows.begin() + to - 1, moved);
            ASSERT_EQ(after, rows);
        }
    }
}

}  // namespace
