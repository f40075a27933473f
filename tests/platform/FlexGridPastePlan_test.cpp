#include <gtest/gtest.h>

#include "platform/controls/FlexGridPastePlan.h"

using platform::GridTable;

namespace {

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
