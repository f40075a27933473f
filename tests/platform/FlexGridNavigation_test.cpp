#include <gtest/gtest.h>

#include "platform/controls/FlexGridNavigation.h"

using platform::FlexGridNavigation;

namespace {

using Move = FlexGridNavigation::Move;
using Place = FlexGridNavigation::Place;

// One heading, four rows, five columns; column 0 is no stop, column 2 is hidden, and cell 3, 3
// refuses editing.
class Field : public FlexGridNavigation::Ground {
public:
    [[nodiscard]] int FirstRow() const override { return 1; }
    [[nodiscard]] int LastRow() const override { return last; }
    [[nodiscard]] int Cols() const override { return 5; }
    [[nodiscard]] bool IsShown(int col) const override { return col != 2; }
    [[nodiscard]] bool TabStops(int row, int col) const override {
        return !nothing && col != 0 && !(row == 3 && col == 3);
    }
    [[nodiscard]] int PageRows() const override { return 2; }
    int last = 4;
    bool nothing = false;
};

class FlexGridNavigationTest : public testing::Test {
protected:
    [[nodiscard]] Place Lead(Move move, Place from) {
        return navigation_.Lead(move, from).value_or(Place{-1, -1});
    }
    Field field_;
    FlexGridNavigation navigation_{field_};
    const Place nowhere_{-1, -1};
};

TEST_F(FlexGridNavigationTest, Arrows_PassHiddenColumnsAndEndAtTheEdges) {
    EXPECT_EQ(Lead(Move::kRight, {1, 1}), (Place{1, 3}));
    EXPECT_EQ(Lead(Move::kLeft, {1, 3}), (Place{1, 1}));
    EXPECT_EQ(Lead(Move::kRight, {1, 4}), nowhere_);
    EXPECT_EQ(Lead(Move::kUp, {1, 1}), nowhere_);
    EXPECT_EQ(Lead(Move::kDown, {4, 1}), nowhere_);
    EXPECT_EQ(Lead(Move::kPageDown, {1, 1}), (Place{3, 1}));
    EXPECT_EQ(Lead(Move::kPageDown, {3, 1}), (Place{4, 1}));
    EXPECT_EQ(Lead(Move::kRowEnd, {2, 1}), (Place{2, 4}));
    EXPECT_EQ(Lead(Move::kFirstCell, {2, 1}), (Place{1, 0}));
    EXPECT_EQ(Lead(Move::kLastCell, {2, 1}), (Place{4, 4}));
}

TEST_F(FlexGridNavigationTest, Tab_StopsAtCellsThatAPersonFills) {
    EXPECT_EQ(Lead(Move::kTab, {1, 4}), (Place{2, 1}));
    EXPECT_EQ(Lead(Move::kTab, {3, 1}), (Place{3, 4}));
    EXPECT_EQ(Lead(Move::kBacktab, {2, 1}), (Place{1, 4}));
    EXPECT_EQ(Lead(Move::kTab, {4, 4}), nowhere_);
    EXPECT_EQ(Lead(Move::kBacktab, {1, 1}), nowhere_);
    field_.nothing = true;
    EXPECT_EQ(Lead(Move::kTab, {1, 1}), nowhere_);
}

TEST_F(FlexGridNavigationTest, EnterAfterTabs_GoesBelowWhereTheRunBegan) {
    EXPECT_EQ(Lead(Move::kTab, {1, 1}), (Place{1, 3}));
    EXPECT_EQ(Lead(Move::kTab, {1, 3}), (Place{1, 4}));
    EXPECT_EQ(Lead(Move::kEnter, {1, 4}), (Place{2, 1}));
    // The run is over.
    EXPECT_EQ(Lead(Move::kEnter, {2, 1}), (Place{3, 1}));
    EXPECT_EQ(Lead(Move::kTab, {1, 1}), (Place{1, 3}));
    EXPECT_EQ(Lead(Move::kLeft, {1, 3}), (Place{1, 1}));
    EXPECT_EQ(Lead(Move::kRight, {1, 1}), (Place{1, 3}));
    EXPECT_EQ(Lead(Move::kEnter, {1, 3}), (Place{2, 3}));
    EXPECT_EQ(Lead(Move::kTab, {1, 1}), (Place{1, 3}));
    navigation_.EndRun();
    EXPECT_EQ(Lead(Move::kEnter, {1, 3}), (Place{2, 3}));
}

TEST_F(FlexGridNavigationTest, NoRows_LeadNowhere) {
    field_.last = 0;
    for (const Move move : {Move::kUp, Move::kDown, Move::kTab, Move::kBacktab, Move::kEnter,
                            Move::kLastCell, Move::kPageUp}) {
        EXPECT_EQ(Lead(move, {0, 0}), nowhere_);
    }
}

}  // namespace
