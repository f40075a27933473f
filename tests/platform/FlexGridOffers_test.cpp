// A grid that shows a table: what it offers, when, and what it says about the answers.
#include <QAccessible>
#include <QHelpEvent>
#include <QToolTip>
#include <algorithm>

#include "FlexGridFixture.h"
#include "MemoryTable.h"
#include "support/Answers.h"

namespace {

class FlexGridTable : public FlexGridTest {
protected:
    void SetUp() override {
        FlexGridTest::SetUp();
        grid_->SetFormatString(QStringLiteral("|FIL 1|FIL 2|FIL 3"));
        grid_->SetColAccessibleName(0, QStringLiteral("Resource"));
        for (int col = 1; col < 4; ++col) {
            grid_->SetColDataType(col, vsFlexGrid::DataType::kCurrency);
            grid_->SetColFormat(col, QStringLiteral("#.00"));
        }
        table_.rows[1].name = QStringLiteral("Forage");
        grid_->SetTable(&table_);
        QObject::connect(grid_, &vsFlexGrid::NoteChanged, grid_,
                         [this](const QString& note) { notes_ += note; });
        EditOnEntering();
        Show();
    }
    void TearDown() override {
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
    }
    void EditTo(int row, int col, const QString& text) {
        ClickCell(row, col);
        Type(text);
        grid_->FinishEdit();
    }

    MemoryTable table_{4, 4};
    QStringList notes_;
};

TEST_F(FlexGridTable, Grid_ShowsTheTablesTextsByItsColumns) {
    table_.Set(2, 3, -12.5F);
    EXPECT_EQ(grid_->Rows(), 5);
    EXPECT_EQ(grid_->TextMatrix(2, 0), "Forage");
    EXPECT_EQ(grid_->TextMatrix(2, 3), "-12.5");
    EXPECT_EQ(grid_->DisplayText(2, 3), "-12.50");
    grid_->SetTextMatrix(2, 3, "7");
    EXPECT_EQ(grid_->TextMatrix(2, 3), "-12.5");
}

TEST_F(FlexGridTable, SecondHeaderRow_ShiftsTheTablesRows) {
    grid_->SetTable(nullptr);
    grid_->SetFixedRows(2);
    grid_->SetTable(&table_);
    EXPECT_EQ(grid_->Rows(), 6);
    EXPECT_EQ(grid_->TextMatrix(3, 0), "Forage");
    EditTo(3, 1, "5");
    EXPECT_EQ(table_.Value(2, 1), 5);
}

TEST_F(FlexGridTable, Edit_IsOneActionThatOffersTheLastTextOnce) {
    EditTo(2, 1, "25");
    EXPECT_EQ(table_.log, QStringList({"Begin Typing", "Offer 2 1 25", "End"}));
    EXPECT_EQ(table_.Value(2, 1), 25);
    EXPECT_EQ(grid_->TextMatrix(2, 1), "25");
}

TEST_F(FlexGridTable, MovingThroughCells_OffersNothing) {
    ClickCell(1, 1);
    Key(Qt::Key_Down);
    Key(Qt::Key_Return);
    Key(Qt::Key_Right);
    grid_->FinishEdit();
    EXPECT_EQ(table_.log, QStringList());
}

TEST_F(FlexGridTable, HandlerThatOffersEachKey_LeavesNothingToOfferAtTheEnd) {
    QObject::connect(grid_, &vsFlexGrid::KeyUpEdit, grid_, [this] { grid_->OfferEdit(); });
    EditTo(2, 1, "25");
    EXPECT_EQ(table_.log, QStringList({"Begin Typing", "Offer 2 1 2", "Offer 2 1 25", "End"}));
    // The value that was there counts as typed, too.
    EditTo(2, 1, "25");
    EXPECT_EQ(table_.log.count("Offer 2 1 25"), 2);
}

TEST_F(FlexGridTable, Escape_OffersAgainWhatTheCellHeld) {
    QObject::connect(grid_, &vsFlexGrid::KeyUpEdit, grid_, [this] { grid_->OfferEdit(); });
    table_.Set(2, 1, 7);
    ClickCell(2, 1);
    Type("25");
    Key(Qt::Key_Escape);
    EXPECT_EQ(table_.Value(2, 1), 7);
    EXPECT_EQ(grid_->TextMatrix(2, 1), "7");
    EXPECT_EQ(table_.log.last(), "End");
}

TEST_F(FlexGridTable, TextReadAsAnotherNumber_IsMarkedAndReported) {
    EditTo(2, 3, "-1,250");
    EXPECT_EQ(table_.Value(2, 3), -1);
    EXPECT_EQ(grid_->DisplayText(2, 3), "-1,250");
    EXPECT_EQ(grid_->CellNote(2, 3), "Stored as -1");
    EXPECT_EQ(grid_->Note(), "Forage, FIL 3: '-1,250' was read as -1. Type -1250.");
    EXPECT_EQ(notes_.last(), grid_->Note());
    const QModelIndex cell = grid_->model()->index(1, 3);
    EXPECT_EQ(cell.data(Qt::AccessibleDescriptionRole).toString(), "Stored as -1");
    const QPoint place = grid_->CellRect(2, 3).center();
    QHelpEvent help(QEvent::ToolTip, place, grid_->viewport()->mapToGlobal(place));
    QApplication::sendEvent(grid_->viewport(), &help);
    EXPECT_EQ(QToolTip::text(), "Stored as -1");
    // Still told while another cell is current, gone when it is put right.
    ClickCell(4, 1);
    EXPECT_EQ(grid_->Note(), "Forage, FIL 3: '-1,250' was read as -1. Type -1250.");
    EditTo(2, 3, "-1250");
    EXPECT_EQ(grid_->CellNote(2, 3), "");
    EXPECT_EQ(grid_->Note(), "");
    EXPECT_EQ(notes_.last(), "");
}

TEST_F(FlexGridTable, Note_FollowsWhatIsBeingTyped) {
    QObject::connect(grid_, &vsFlexGrid::KeyUpEdit, grid_, [this] { grid_->OfferEdit(); });
    ClickCell(2, 1);
    Type("-");
    EXPECT_EQ(grid_->Note(), "");
    Type("1");
    EXPECT_EQ(grid_->CellNote(2, 1), "");
    Type("2x");
    EXPECT_EQ(grid_->CellNote(2, 1), "Stored as -12");
    EXPECT_EQ(grid_->Note(), "Forage, FIL 1: '-12x' was read as -12. Type a number.");
    EXPECT_EQ(grid_->findChild<QLineEdit*>()->accessibleDescription(), "Stored as -12");
}

TEST_F(FlexGridTable, SameNumberWrittenOtherwise_IsNotMarked) {
    EditTo(2, 1, "007.50");
    EXPECT_EQ(table_.Value(2, 1), 7.5F);
    EXPECT_EQ(grid_->CellNote(2, 1), "");
    EditTo(2, 1, "0.1");
    EXPECT_EQ(grid_->CellNote(2, 1), "");
    EXPECT_EQ(grid_->Note(), "");
}

TEST_F(FlexGridTable, ChangedAnswer_ShowsTheStoredNumberAndReports) {
    table_.showsStored = true;
    EditTo(2, 2, "1,200");
    EXPECT_EQ(grid_->TextMatrix(2, 2), "1");
    EXPECT_EQ(grid_->CellNote(2, 2), "");
    EXPECT_EQ(grid_->Note(), "Forage, FIL 2: '1,200' was read as 1. Type 1200.");
    EditTo(2, 2, "012");
    EXPECT_EQ(grid_->TextMatrix(2, 2), "12");
    EXPECT_EQ(grid_->Note(), "");
}

TEST_F(FlexGridTable, RefusedText_IsReportedWithItsCellAndLeavesTheCell) {
    QStringList refused;
    QObject::connect(grid_, &vsFlexGrid::Refused, grid_,
                     [&](int, int, const QString& sentence) { refused += sentence; });
    table_.Set(2, 1, 7);
    EditTo(2, 1, "1e300");
    EXPECT_EQ(grid_->TextMatrix(2, 1), "7");
    EXPECT_EQ(refused, QStringList({"Forage, FIL 1: The number is too large."}));
    EXPECT_EQ(grid_->Note(), refused.front());
    EditTo(3, 1, "8");
    EXPECT_EQ(grid_->Note(), "");
}

TEST_F(FlexGridTable, CellThatTakesNothing_IsNotEdited) {
    table_.refuses = [](int, int col) { return col == 1; };
    ClickCell(2, 1);
    EXPECT_FALSE(grid_->Editing());
    Type("5");
    grid_->FinishEdit();
    EXPECT_EQ(table_.log, QStringList());
}

TEST_F(FlexGridTable, BlockPastedOrCleared_IsOneAction) {
    ClickCell(2, 1);
    grid_->SetEditSelText("1\t2\r\n3\t4\r\n");
    EXPECT_EQ(table_.log, QStringList({"Begin Paste", "Offer 2 1 1", "Offer 2 2 2", "Offer 3 1 3",
                                       "Offer 3 2 4", "End"}));
    EXPECT_EQ(table_.Value(3, 2), 4);
    grid_->FinishEdit();
    grid_->Select(1, 1);
    table_.log.clear();
    grid_->FinishEdit();
    Key(Qt::Key_Escape);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Delete);
    EXPECT_EQ(table_.log, QStringList({"Begin Delete", "Offer 1 1 ", "Offer 2 1 ", "End"}));
    EXPECT_EQ(grid_->CellNote(2, 1), "");
}

TEST_F(FlexGridTable, CellsCutAndPastedAtOnce_AreAsBefore) {
    EditTo(2, 1, QStringLiteral("7"));
    EditTo(2, 2, QStringLiteral("8"));
    ClickCell(2, 1);
    Key(Qt::Key_Escape);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(table_.Value(2, 1), 0);
    EXPECT_EQ(table_.Value(2, 2), 0);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(table_.Value(2, 1), 7);
    EXPECT_EQ(table_.Value(2, 2), 8);
    EXPECT_EQ(table_.Value(2, 3), 0);
}

TEST_F(FlexGridTable, Tab_PassesCellsThatRefuseAndColumnsWithoutStops) {
    table_.refuses = [](int, int col) { return col == 2; };
    ClickCell(1, 1);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Current(), Cell(1, 3));
    Key(Qt::Key_Tab);
    EXPECT_EQ(Current(), Cell(2, 1));
    Type("5");
    Key(Qt::Key_Tab);
    Key(Qt::Key_Return);
    EXPECT_EQ(Current(), Cell(3, 1));
    EXPECT_EQ(table_.Value(2, 1), 5);
}

TEST_F(FlexGridTable, MarkedCell_TakesAPasteWithoutAnEditor) {
    ClickCell(2, 1);
    Key(Qt::Key_Escape);
    grid_->SetEditSelText("-1,250.00");
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(table_.Value(2, 1), -1250);
    EXPECT_EQ(table_.log, QStringList({"Begin Paste", "Offer 2 1 -1250.00", "End"}));
    EXPECT_EQ(grid_->Note(), "");
}

TEST_F(FlexGridTable, RowsBeyondTheEnd_AreAddedAfterOneQuestion) {
    table_.room = 5;
    // The table may announce its new rows or not.
    for (const bool announces : {true, false}) {
        const int rows = table_.RowCount();
        table_.appended = [this, announces](int row) {
            if (announces) {
                grid_->RowInserted(row);
            }
        };
        support::Answers answers({QMessageBox::Yes});
        grid_->Select(rows, 0);
        Key(Qt::Key_Escape);
        grid_->FinishEdit();
        grid_->SetEditSelText("a\t1\r\nb\t2\r\nc\t3\r\n");
        ASSERT_EQ(answers.Texts().size(), 1);
        EXPECT_TRUE(answers.Texts().front().contains("Add 2 new rows?"));
        EXPECT_EQ(table_.RowCount(), rows + 2);
        EXPECT_EQ(grid_->Rows(), rows + 3);
        EXPECT_EQ(grid_->TextMatrix(rows + 2, 0), "c");
        EXPECT_EQ(table_.Value(rows + 2, 1), 3);
        EXPECT_EQ(table_.log.count("Begin Paste"), announces ? 1 : 2);
    }
}

TEST_F(FlexGridTable, RowsThatAreNotWanted_AreListed) {
    table_.room = 5;
    support::Answers answers({QMessageBox::No, QMessageBox::Ok});
    grid_->Select(4, 1);
    grid_->FinishEdit();
    grid_->SetEditSelText("1\r\n2\r\n");
    EXPECT_EQ(table_.RowCount(), 4);
    ASSERT_EQ(answers.Texts().size(), 2);
    EXPECT_EQ(answers.Texts().back(),
              "One cell was not pasted:\r\nrow 5: '2' lies beyond the "
              "last row.");
}

TEST_F(FlexGridTable, RefusedByTheTable_IsListedWithItsReason) {
    table_.longest = 12;
    support::Answers answers;
    ClickCell(2, 1);
    grid_->SetEditSelText("1\t1e300\r\n");
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_EQ(answers.Texts().front(),
              "One cell was not pasted:\r\nFIL 2, Forage: '1e300'. The number is too large.");
    EXPECT_EQ(table_.Value(2, 1), 1);
}

TEST_F(FlexGridTable, AnnouncedRows_ComeGoAndMoveWithTheCurrentCell) {
    table_.rows.insert(table_.rows.begin(), table_.rows[2]);
    grid_->RowInserted(1);
    EXPECT_EQ(grid_->Rows(), 6);
    grid_->Select(5, 1);
    std::rotate(table_.rows.begin() + 1, table_.rows.begin() + 4, table_.rows.end());
    grid_->RowMoved(5, 2);
    EXPECT_EQ(Current(), Cell(2, 1));
    EXPECT_EQ(grid_->TextMatrix(2, 0), "Row4");
    table_.rows.erase(table_.rows.begin());
    grid_->RowRemoved(1);
    EXPECT_EQ(Current(), Cell(1, 1));
    table_.rows.resize(2);
    grid_->Refresh();
    EXPECT_EQ(grid_->Rows(), 3);
    EXPECT_EQ(grid_->DisplayText(1, 0), "Row4");
}

TEST_F(FlexGridTable, Refresh_GivesUpAnOpenEdit) {
    ClickCell(2, 1);
    Type("5");
    grid_->Refresh();
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(table_.log, QStringList({"Begin Typing", "End"}));
}

}  // namespace
