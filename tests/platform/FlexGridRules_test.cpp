// The grid's rules without a grid: where a key leads, what a paste means, what becomes of a text
// that is typed, what is said about it.
#include <gtest/gtest.h>

#include "platform/controls/FlexGridCellEdit.h"
#include "platform/controls/FlexGridNavigation.h"
#include "platform/controls/FlexGridNotes.h"
#include "platform/controls/FlexGridPastePlan.h"

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

TEST(FlexGridCellEditTest, MovingThrough_OffersNothing) {
    FlexGridCellEdit edit;
    edit.Begin("7");
    EXPECT_FALSE(edit.MustOffer("7"));
    EXPECT_TRUE(edit.Change());
    EXPECT_FALSE(edit.Change());
    // Typed is typed, also when it is what was there.
    EXPECT_TRUE(edit.MustOffer("7"));
    edit.Offered("7", {});
    EXPECT_FALSE(edit.MustOffer("7"));
    EXPECT_TRUE(edit.MustOffer("78"));
    edit.Begin("8");
    EXPECT_FALSE(edit.IsChanged());
    EXPECT_FALSE(edit.WasOffered());
}

TEST(FlexGridCellEditTest, Limit_HoldsWhateverWasThere) {
    EXPECT_TRUE(FlexGridCellEdit::Allows("", "12345", 5));
    EXPECT_FALSE(FlexGridCellEdit::Allows("12345", "123456", 5));
    // A longer text may be shortened only.
    EXPECT_TRUE(FlexGridCellEdit::Allows("1250.75", "1250.7", 5));
    EXPECT_TRUE(FlexGridCellEdit::Allows("1250.75", "250.75", 5));
    EXPECT_FALSE(FlexGridCellEdit::Allows("1250.75", "9250.75", 5));
    EXPECT_FALSE(FlexGridCellEdit::Allows("1250.75", "999999", 5));
    EXPECT_TRUE(FlexGridCellEdit::Allows("1250.75", "9", 5));
    EXPECT_TRUE(FlexGridCellEdit::Allows("1", QString(900, 'x'), 0));
}

TEST(FlexGridNotesTest, Sentence_NamesCellTextAndNumber) {
    const FlexGridNotes::Cell cell{"Forage", "FIL 3"};
    const auto read = [&](const char* typed, const char* stored) {
        return FlexGridNotes::ReadAs(cell, QString::fromUtf8(typed), stored, true, 10);
    };
    EXPECT_EQ(read("-1,250", "-1"), "Forage, FIL 3: '-1,250' was read as -1. Type -1250.");
    EXPECT_EQ(read("(75)", "0"), "Forage, FIL 3: '(75)' was read as 0. Type -75.");
    EXPECT_EQ(read("$-40", "0"), "Forage, FIL 3: '$-40' was read as 0. Type -40.");
    EXPECT_EQ(read("12,5", "12"), "Forage, FIL 3: '12,5' was read as 12. Type 12.5.");
    EXPECT_EQ(read("abc", "0"), "Forage, FIL 3: 'abc' was read as 0. Type a number.");
    EXPECT_EQ(read("99", "5"), "Forage, FIL 3: '99' became 5.");
    EXPECT_EQ(FlexGridNotes::ReadAs(cell, "%1", "x", false, 0),
              "Forage, FIL 3: '%1' was stored as 'x'.");
    // What cannot be typed is no advice.
    EXPECT_EQ(FlexGridNotes::Meant("1,250,000", 5), "");
    EXPECT_EQ(FlexGridNotes::StoredAs("-1"), "Stored as -1");
}

TEST(FlexGridNotesTest, BeginningsOfNumbers_AreNotComplainedAbout) {
    for (const char* text : {"", "-", "-1", ".", "-.5", "12.", "1e", "1e-", " 4"}) {
        EXPECT_TRUE(FlexGridNotes::MayBecomeNumber(text)) << text;
    }
    for (const char* text : {"1,", "a", "$", "(7", "1-", "e5"}) {
        EXPECT_FALSE(FlexGridNotes::MayBecomeNumber(text)) << text;
    }
}

using FlexGridPastePlan::Area;
using FlexGridPastePlan::Why;
using Takes = GridTable::Takes;

// Three rows: a name, a computed number, a hidden column, two numbers of at most six characters.
class Sheet : public FlexGridPastePlan::Ground {
public:
    [[nodiscard]] int RowCount() const override { return 3; }
    [[nodiscard]] int RoomForRows() const override { return room; }
    [[nodiscard]] int Cols() const override { return 5; }
    [[nodiscard]] bool IsShown(int col) const override { return col != 2; }
    [[nodiscard]] GridTable::Takes Takes(int /*row*/, int col) const override {
        return col == 0 ? Takes::kText : col == 1 ? Takes::kNothing : Takes::kNumber;
    }
    [[nodiscard]] int MaxLength(int col) const override { return col == 0 ? 10 : 6; }
    [[nodiscard]] QString Text(int /*row*/, int col) const override {
        return col == 1 ? QStringLiteral("0") : QString();
    }
    int room = 0;
};

class FlexGridPastePlanTest : public testing::Test {
protected:
    [[nodiscard]] FlexGridPastePlan::Plan Make(const QString& text, Area area,
                                               bool addRows = true) const {
        return FlexGridPastePlan::Make(FlexGridClip::FromText(text), sheet_, area, addRows);
    }
    static QStringList Cells(const FlexGridPastePlan::Plan& plan) {
        QStringList cells;
        for (const auto& cell : plan.cells) {
            cells += QStringLiteral("%1,%2=").arg(cell.row).arg(cell.col) + cell.text;
        }
        return cells;
    }
    static std::vector<Why> Whys(const FlexGridPastePlan::Plan& plan) {
        std::vector<Why> whys;
        for (const auto& refusal : plan.refusals) {
            whys.push_back(refusal.why);
        }
        return whys;
    }
    Sheet sheet_;
};

TEST_F(FlexGridPastePlanTest, Block_BeginsAtTheTopLeftOfTheSelection) {
    const auto plan = Make("1\t2\r\n3\t4\r\n", {1, 3, 3, 4});
    EXPECT_EQ(Cells(plan), QStringList({"1,3=1", "1,4=2", "2,3=3", "2,4=4"}));
    EXPECT_EQ(plan.area.bottom, 2);
    EXPECT_EQ(plan.area.right, 4);
}

TEST_F(FlexGridPastePlanTest, FiguresOverTheWholeTable_GoToTheColumnsOfFigures) {
    const auto left = [this](const QString& text, Area area) {
        return FlexGridPastePlan::Begun(FlexGridClip::FromText(text), sheet_, area).left;
    };
    const Area whole{1, 0, 3, 4};
    EXPECT_EQ(left("1\t2\r\n3\t(4)\r\n", whole), 3);
    EXPECT_EQ(left("FIL 1\tFIL 2\r\n-1,250.00\t4\r\n", whole), 3) << "with their headings";
    EXPECT_EQ(left("North\t0\t1\t2\r\n", whole), 0) << "with the names";
    EXPECT_EQ(left("North\t2\r\n", whole), 0) << "no figures";
    EXPECT_EQ(left("1\t2\t3\r\n", whole), 0) << "of another width";
    EXPECT_EQ(left("1\r\n2\r\n", whole), 0);
    EXPECT_EQ(left("1\t2\r\n", {1, 0, 2, 4}), 0) << "a part of the table";
    EXPECT_EQ(left("1\t2\r\n", {1, 1, 3, 4}), 1);
}

TEST_F(FlexGridPastePlanTest, OneValue_FillsTheSelection) {
    EXPECT_EQ(Cells(Make("7", {2, 3, 3, 4})), QStringList({"2,3=7", "2,4=7", "3,3=7", "3,4=7"}));
    // Over the hidden column.
    EXPECT_EQ(Cells(Make("7\r\n", {1, 0, 1, 3})), QStringList({"1,0=7", "1,3=7"}));
}

TEST_F(FlexGridPastePlanTest, Refusals_SayWhichAndWhy) {
    const auto plan =
        Make("name\t5\t12abc\t1234567\t9\r\nlong long name\t0\t\t1,250\r\n", {3, 0, 3, 0});
    EXPECT_EQ(Cells(plan), QStringList({"3,0=name"}));
    EXPECT_EQ(Whys(plan),
              std::vector<Why>({Why::kNotEditable, Why::kNoNumber, Why::kTooLong, Why::kBeyondTable,
                                Why::kBeyondTable, Why::kBeyondTable, Why::kBeyondTable}));
    EXPECT_EQ(plan.refusals[0].row, 3);
    EXPECT_EQ(plan.refusals[0].col, 1);
    EXPECT_EQ(plan.refusals[3].col, -1);
}

TEST_F(FlexGridPastePlanTest, RowsBeyondTheEnd_AreNewWhereThereIsRoom) {
    sheet_.room = 2;
    const QString text = "a\t\t1\r\n\t\t\r\nb\t\t2\r\n\t\t\r\nc\t\t3\r\nd\t\t4\r\n";
    const auto plan = Make(text, {3, 0, 3, 0});
    EXPECT_EQ(plan.newRows, 2);
    EXPECT_EQ(Cells(plan), QStringList({"3,0=a", "3,3=1", "4,0=b", "4,3=2", "5,0=c", "5,3=3"}));
    EXPECT_EQ(Whys(plan), std::vector<Why>({Why::kBeyondTable, Why::kBeyondTable}));
    const auto without = Make(text, {3, 0, 3, 0}, false);
    EXPECT_EQ(without.newRows, 0);
    EXPECT_EQ(without.refusals.size(), 6U);
}

TEST_F(FlexGridPastePlanTest, Headings_AreWordsAboveNumbers) {
    const auto has = [&](const char* text, int left) {
        return FlexGridPastePlan::HasHeadings(FlexGridClip::FromText(text), sheet_,
                                              {1, left, 1, left});
    };
    EXPECT_TRUE(has("FIL 1\tFIL 2\r\n1\t2\r\n", 3));
    EXPECT_TRUE(has("Name\tFrom\tTo\r\nx\t0\t$5\r\n", 0));
    EXPECT_FALSE(has("1\t2\r\n3\t4\r\n", 3));
    EXPECT_FALSE(has("FIL 1\tFIL 2\r\n", 3));
    EXPECT_FALSE(has("Name\r\nother\r\n", 0));
    EXPECT_FALSE(has("x\ty\r\nz\tw\r\n", 3));
}

TEST_F(FlexGridPastePlanTest, Numbers_ArriveAsTheSpreadsheetMeantThem) {
    using FlexGridPastePlan::AsTyped;
    EXPECT_EQ(AsTyped("-1,250.00", true, 10), "-1250.00");
    EXPECT_EQ(AsTyped("$1,250.00", true, 5), "1250");
    EXPECT_EQ(AsTyped("(75)", true, 10), "-75");
    EXPECT_EQ(AsTyped("two\r\nlines", false, 0), "two lines");
    EXPECT_EQ(AsTyped("$5", false, 0), "$5");
}

TEST_F(FlexGridPastePlanTest, BehindACaret_AllFitsOrNothing) {
    using FlexGridPastePlan::Inserted;
    EXPECT_EQ(Inserted("7400", "12,345", "", true, 7), std::nullopt);
    EXPECT_EQ(Inserted("74", "1,234", "", true, 7), "1234");
    EXPECT_EQ(Inserted("7", "-4", "", true, 7), std::nullopt);
    EXPECT_EQ(Inserted("-", "40", "", true, 7), "40");
    EXPECT_EQ(Inserted("a", "bc", "d", false, 4), "bc");
    EXPECT_EQ(Inserted("a", "bcd", "e", false, 4), std::nullopt);
    EXPECT_EQ(Inserted("", "FIL 1", "", true, 10), std::nullopt);
}

}  // namespace
