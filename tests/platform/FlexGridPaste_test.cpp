// Blocks of cells that come from a spreadsheet.
#include <QToolTip>

#include "FlexGridFixture.h"
#include "platform/controls/FlexGridClip.h"

namespace {

class FlexGridPaste : public FlexGridTest {
protected:
    void SetUp() override {
        FlexGridTest::SetUp();
        FillList();
        grid_->SetColDataType(2, vsFlexGrid::DataType::kCurrency);
        EditOnEntering();
        Show();
    }
    void TearDown() override {
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
    }
    // Pastes with the block's first cell in that one.
    void PasteAt(int row, int col, const QString& text) {
        ClickCell(row, col);
        grid_->SetEditSelText(text);
    }
    [[nodiscard]] QString Tip() const {
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    }
};

TEST_F(FlexGridPaste, WholeBlock_TellsNothing) {
    PasteAt(2, 0, "West\t7\r\nx\t8\r\n");
    EXPECT_EQ(Tip(), "");
}

TEST_F(FlexGridPaste, BeyondTheTable_TellsHowManyCellsWereLeftOut) {
    PasteAt(3, 1, "7\t70\tmore\r\n8\t80\t\r\n");
    EXPECT_EQ(grid_->TextMatrix(3, 1), "7");
    EXPECT_EQ(grid_->TextMatrix(3, 2), "70");
    EXPECT_EQ(grid_->Rows(), 4);
    EXPECT_TRUE(Tip().startsWith("3 cells ")) << Tip().toStdString();
}

TEST_F(FlexGridPaste, CellThatCannotBeChanged_IsToldUnlessItHoldsThatTextAlready) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [](int, int col, bool* cancel) { *cancel = col == 1; });
    PasteAt(2, 0, "West\t2\r\n");
    EXPECT_EQ(Tip(), "");
    PasteAt(2, 0, "West\t9\r\n");
    EXPECT_EQ(grid_->TextMatrix(2, 1), "2");
    EXPECT_TRUE(Tip().startsWith("One cell ")) << Tip().toStdString();
}

TEST_F(FlexGridPaste, NumberTooLong_LeavesTheCellAsItWas) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [this](int, int, bool*) { grid_->SetEditMaxLength(5); });
    PasteAt(1, 0, "Northern\t4\t123456\r\n");
    EXPECT_EQ(grid_->TextMatrix(1, 0), "North");
    EXPECT_EQ(grid_->TextMatrix(1, 2), "1000");
    EXPECT_TRUE(Tip().startsWith("2 cells ")) << Tip().toStdString();
}

TEST_F(FlexGridPaste, OneNumberInPlaceOfTheWholeCell_ArrivesWholeOrNotAtAll) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [this](int, int, bool*) { grid_->SetEditMaxLength(5); });
    PasteAt(1, 2, "$1,250");
    EXPECT_EQ(grid_->EditText(), "1250");
    EXPECT_EQ(Tip(), "");
    ClickCell(2, 2);
    const QString before = grid_->EditText();
    grid_->SetEditSelText("123456");
    EXPECT_EQ(grid_->EditText(), before);
    EXPECT_TRUE(Tip().startsWith("One cell ")) << Tip().toStdString();
}

TEST_F(FlexGridPaste, PartOfANumber_IsPutInAsItIs) {
    ClickCell(1, 2);
    grid_->SetEditText("12");
    grid_->SetEditSelText("34");
    EXPECT_EQ(grid_->EditText(), "1234");
}

TEST_F(FlexGridPaste, SpreadsheetsNumbers_ArriveAsNumbers) {
    PasteAt(1, 0, "$5\t1,200\t($1,250.50)\r\n");
    EXPECT_EQ(grid_->TextMatrix(1, 0), "$5");
    EXPECT_EQ(grid_->TextMatrix(1, 1), "1200");
    EXPECT_EQ(grid_->TextMatrix(1, 2), "-1250.50");
    PasteAt(2, 2, "$2,000.00\r\n");
    grid_->FinishEdit();
    EXPECT_EQ(grid_->TextMatrix(2, 2), "2000.00");
}

TEST_F(FlexGridPaste, RowsSortedWhilePasting_KeepTheirLines) {
    QObject::connect(grid_, &vsFlexGrid::AfterEdit, grid_, [this](int, int col) {
        if (col == 1) {
            grid_->SortNumericAscending(1);
        }
    });
    ClickCell(1, 0);
    // The keys in the hidden column tell which row is which.
    grid_->SetEditSelText("first\t30\t1\r\nsecond\t20\t2\r\nthird\t10\t3\r\n");
    const char* names[] = {"third", "second", "first"};
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(grid_->TextMatrix(row, 0), names[row - 1]);
        EXPECT_EQ(grid_->TextMatrix(row, 1), QString::number(row * 10));
        EXPECT_EQ(grid_->TextMatrix(row, 2), QString::number(4 - row));
        EXPECT_EQ(grid_->TextMatrix(row, 3), QString::number((4 - row) * 7));
    }
}

TEST(FlexGridClipTest, PlainNumber_TakesOnlyWhatIsANumber) {
    const struct {
        const char* text;
        const char* plain;
    } cases[] = {{"$1,250", "1250"},
                 {"1,250.75", "1250.75"},
                 {"-$3.50", "-3.50"},
                 {"$-3.50", "-3.50"},
                 {"(12)", "-12"},
                 {" 7 ", "7"},
                 {".5", ".5"},
                 {"\xe2\x88\x92"
                  "4",
                  "-4"},
                 {"12abc", "12abc"},
                 {"1,25", "1,25"},
                 {"(12", "(12"},
                 {"", ""},
                 {"$", "$"},
                 {".", "."},
                 {"1e5", "1e5"},
                 {"day", "day"},
                 {"12,345,678", "12345678"}};
    for (const auto& [text, plain] : cases) {
        EXPECT_EQ(FlexGridClip::PlainNumber(QString::fromUtf8(text)), QString::fromUtf8(plain))
            << text;
    }
}

}  // namespace
