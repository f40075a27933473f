// Blocks of cells that come from a spreadsheet.
#include "FlexGridFixture.h"
#include "platform/controls/FlexGridClip.h"
#include "support/Answers.h"

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
    // Pastes with the block's first cell in that one.
    void PasteAt(int row, int col, const QString& text) {
        ClickCell(row, col);
        grid_->SetEditSelText(text);
    }
    // The lines of the message that came, and none the next time.
    QStringList Said() {
        QStringList lines;
        for (const QString& text : answers_.Texts().mid(told_)) {
            lines += text.split("\r\n");
            ++told_;
        }
        return lines;
    }

    QStringList Boxes() {
        const QStringList texts = answers_.Texts().mid(told_);
        told_ += texts.size();
        return texts;
    }

    support::Answers answers_;
    qsizetype told_ = 0;
};

TEST_F(FlexGridPaste, WholeBlock_ReportsNothing) {
    PasteAt(2, 0, "West\t7\r\nx\t8\r\n");
    EXPECT_EQ(Said(), QStringList());
}

TEST_F(FlexGridPaste, BeyondTheTable_ListsTheCellsThatWereLeftOut) {
    PasteAt(3, 1, "7\t70\t9\r\n8\t80\t\r\n");
    EXPECT_EQ(grid_->TextMatrix(3, 1), "7");
    EXPECT_EQ(grid_->TextMatrix(3, 2), "70");
    EXPECT_EQ(grid_->Rows(), 4);
    EXPECT_EQ(Said(),
              QStringList({"3 cells were not pasted:", "row 3: '9' lies beyond the last column.",
                           "row 4: '8' lies beyond the last row.",
                           "row 4: '80' lies beyond the last row."}));
}

TEST_F(FlexGridPaste, CellThatCannotBeChanged_IsReportedUnlessItHoldsThatTextAlready) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [](int, int col, bool* cancel) { *cancel = col == 1; });
    PasteAt(2, 0, "West\t2\r\n");
    EXPECT_EQ(Said(), QStringList());
    PasteAt(2, 0, "West\t9\r\n");
    EXPECT_EQ(grid_->TextMatrix(2, 1), "2");
    EXPECT_EQ(Said(), QStringList({"One cell was not pasted:",
                                   "# RLs, West: '9'; this cell cannot be changed."}));
}

TEST_F(FlexGridPaste, TextTooLong_LeavesTheCellAsItWas) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [this](int, int, bool*) { grid_->SetEditMaxLength(5); });
    PasteAt(1, 0, "Northern\t4\t123456\r\n");
    EXPECT_EQ(grid_->TextMatrix(1, 0), "North");
    EXPECT_EQ(grid_->TextMatrix(1, 2), "1000");
    EXPECT_EQ(Said(), QStringList({"2 cells were not pasted:",
                                   "Name, row 1: 'Northern' is longer than 5 characters.",
                                   "Cost, North: '123456' is longer than 5 characters."}));
}

TEST_F(FlexGridPaste, OneNumberInPlaceOfTheWholeCell_ArrivesWholeOrNotAtAll) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [this](int, int, bool*) { grid_->SetEditMaxLength(5); });
    PasteAt(1, 2, "$1,250");
    EXPECT_EQ(grid_->EditText(), "1250");
    EXPECT_EQ(Said(), QStringList());
    ClickCell(2, 2);
    const QString before = grid_->EditText();
    grid_->SetEditSelText("123456");
    EXPECT_EQ(grid_->EditText(), before);
    EXPECT_EQ(Said().value(1), "Cost, East: '123456' is longer than 5 characters.");
    grid_->SetEditSelText("FIL 1");
    EXPECT_EQ(grid_->EditText(), before);
    EXPECT_EQ(Said().value(1), "Cost, East: 'FIL 1' is not a number.");
}

TEST_F(FlexGridPaste, PartOfANumber_IsPutInWhenTheWholeIsOne) {
    ClickCell(1, 2);
    grid_->SetEditText("12");
    grid_->SetEditSelText("34");
    EXPECT_EQ(grid_->EditText(), "1234");
    grid_->SetEditSelText("-5");
    EXPECT_EQ(grid_->EditText(), "1234");
    EXPECT_EQ(Said().value(1), "Cost, North: '-5' is not a number.");
}

TEST_F(FlexGridPaste, SelectedBlock_IsFilledFromItsTopLeft) {
    ClickCell(1, 1);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    ASSERT_EQ(Current(), Cell(2, 2));
    grid_->SetEditSelText("11\t12\r\n21\t22\r\n");
    EXPECT_EQ(grid_->Clip(), "11\t12\r\n21\t22\r\n");
    EXPECT_EQ(grid_->TextMatrix(1, 1), "11");
    EXPECT_EQ(Current(), Cell(1, 1));
    // One value fills it.
    grid_->SetEditSelText("5");
    EXPECT_EQ(grid_->Clip(), "5\t5\r\n5\t5\r\n");
    // What is cut goes back to where it came from.
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(grid_->TextMatrix(1, 1), "");
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(grid_->TextMatrix(1, 1), "5");
    EXPECT_EQ(grid_->TextMatrix(2, 2), "5");
    EXPECT_EQ(Said(), QStringList());
}

TEST_F(FlexGridPaste, SelectionMadeUpwards_BeginsAtItsTopLeft) {
    ClickCell(2, 2);
    Key(Qt::Key_Up, Qt::ShiftModifier);
    Key(Qt::Key_Left, Qt::ShiftModifier);
    grid_->SetEditSelText("11\t12\r\n21\t22\r\n");
    EXPECT_EQ(grid_->TextMatrix(1, 1), "11");
    EXPECT_EQ(grid_->TextMatrix(2, 2), "22");
    EXPECT_EQ(grid_->TextMatrix(3, 2), "3000");
}

TEST_F(FlexGridPaste, HeadingsAboveNumbers_AreLeftOutIfWanted) {
    for (const auto answer : {QMessageBox::Yes, QMessageBox::No}) {
        FillList();
        ClickCell(1, 1);
        Key(Qt::Key_Escape);
        const bool leftOut = answer == QMessageBox::Yes;
        answers_.Press({answer});
        grid_->SetEditSelText("# RLs\tCost\r\n8\t80\r\n9\t90\r\n");
        const QStringList told = Boxes();
        ASSERT_FALSE(told.isEmpty());
        EXPECT_TRUE(told.front().contains("# RLs, Cost"));
        EXPECT_EQ(grid_->TextMatrix(1, 1), leftOut ? "8" : "1");
        EXPECT_EQ(grid_->TextMatrix(2, 1), leftOut ? "9" : "8");
        EXPECT_EQ(told.size(), leftOut ? 1 : 2);
    }
}

TEST_F(FlexGridPaste, HeadingsThatAreEmpty_AreNotNamed) {
    FillList();
    ClickCell(1, 1);
    Key(Qt::Key_Escape);
    answers_.Press({QMessageBox::Yes});
    grid_->SetEditSelText("\tCost\r\n8\t80\r\n");
    const QStringList told = Boxes();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.front().contains("(Cost)")) << told.front().toStdString();
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
                 {"$(75)", "-75"},
                 {"$ 1,250.00 ", "1250.00"},
                 {"+5", "5"},
                 {"12 5", "12 5"},
                 {"-11 -12", "-11 -12"},
                 {"day", "day"},
                 {"12,345,678", "12345678"}};
    for (const auto& [text, plain] : cases) {
        EXPECT_EQ(FlexGridClip::PlainNumber(QString::fromUtf8(text)), QString::fromUtf8(plain))
            << text;
    }
}

}  // namespace
