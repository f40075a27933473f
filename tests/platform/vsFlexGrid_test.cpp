// What a grid holds and shows, without editing.
#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>

#include "FlexGridFixture.h"
#include "platform/RuntimeError.h"
#include "platform/controls/FlexGridClip.h"
#include "support/Answers.h"

namespace {

class FlexGridShape : public FlexGridTest {};

TEST_F(FlexGridShape, NewGrid_HasOneFixedRow) {
    EXPECT_EQ(grid_->FixedRows(), 1);
    EXPECT_EQ(grid_->Rows(), 1);
    EXPECT_EQ(grid_->Row(), 0);
    EXPECT_EQ(grid_->Col(), 0);
    EXPECT_STREQ(grid_->metaObject()->className(), "vsFlexGrid");
}

TEST_F(FlexGridShape, FormatString_MakesColumnsWithTrimmedHeadings) {
    grid_->SetFormatString("#  |Name        |Short Name        |Units   |Cost   |");
    EXPECT_EQ(grid_->Cols(), 6);
    EXPECT_EQ(grid_->TextMatrix(0, 1), "Name");
    EXPECT_EQ(grid_->TextMatrix(0, 2), "Short Name");
    EXPECT_EQ(grid_->TextMatrix(0, 5), "");
}

TEST_F(FlexGridShape, Widths_AreKeptInTwips) {
    FillList();
    grid_->SetColWidth(2, 1400);
    EXPECT_EQ(grid_->ColWidth(2), 1400);
    EXPECT_EQ(grid_->columnWidth(2), 93);
    EXPECT_EQ(grid_->columnWidth(0), 240);
    grid_->horizontalHeader()->resizeSection(2, 100);
    EXPECT_EQ(grid_->ColWidth(2), 1500);
}

TEST_F(FlexGridShape, HiddenColumn_KeepsItsWidth) {
    FillList();
    grid_->SetColWidth(3, 1200);
    EXPECT_TRUE(grid_->ColHidden(3));
    EXPECT_EQ(grid_->ColWidth(3), 1200);
    grid_->SetColHidden(3, false);
    EXPECT_EQ(grid_->columnWidth(3), 80);
}

TEST_F(FlexGridShape, DisplayText_FollowsFormat) {
    FillList();
    EXPECT_EQ(grid_->DisplayText(2, 2), "$2,000");
    EXPECT_EQ(grid_->TextMatrix(2, 2), "2000");
    grid_->SetTextMatrix(2, 2, "12abc");
    EXPECT_EQ(grid_->DisplayText(2, 2), "12abc");
    EXPECT_EQ(grid_->ValueMatrix(2, 2), 12);
    // Shown as it is read: 1, not 1000.
    grid_->SetTextMatrix(2, 2, "1,000");
    EXPECT_EQ(grid_->DisplayText(2, 2), "1,000");
    grid_->SetTextMatrix(2, 2, "");
    EXPECT_EQ(grid_->DisplayText(2, 2), "");
}

TEST_F(FlexGridShape, HalfOfAShownUnit_RoundsAwayFromZeroAsTotalsDo) {
    FillList();
    grid_->SetColDataType(2, vsFlexGrid::DataType::kLong);
    for (const auto& [stored, shown] : {std::pair("2.5", "$3"), std::pair("3.5", "$4"),
                                        std::pair("-2.5", "-$3"), std::pair("2.49", "$2")}) {
        grid_->SetTextMatrix(1, 2, stored);
        EXPECT_EQ(grid_->DisplayText(1, 2), shown);
        EXPECT_EQ(grid_->TextMatrix(1, 2), stored);
    }
}

TEST_F(FlexGridShape, OutsideTheGrid_IsSubscriptOutOfRange) {
    FillList();
    const auto number = [](const auto& body) {
        try {
            body();
        } catch (const platform::RuntimeError& error) {
            return error.Number();
        }
        return 0;
    };
    EXPECT_EQ(number([&] { (void)grid_->TextMatrix(4, 0); }), 9);
    EXPECT_EQ(number([&] { (void)grid_->TextMatrix(-1, 0); }), 9);
    EXPECT_EQ(number([&] { grid_->SetTextMatrix(1, 4, ""); }), 9);
    EXPECT_EQ(number([&] { (void)grid_->ColWidth(9); }), 9);
    EXPECT_EQ(number([&] { grid_->RemoveItem(0); }), 9);
    EXPECT_EQ(number([&] { grid_->AddItem("", 0); }), 9);
    EXPECT_EQ(number([&] { grid_->Select(4, 0); }), 9);
}

TEST_F(FlexGridShape, Rows_AreInsertedRemovedAndSortedWithTheirData) {
    FillList();
    for (int row = 1; row <= 3; ++row) {
        grid_->SetRowData(row, row * 10);
    }
    grid_->AddItem("Mid\t9\t5", 2);
    EXPECT_EQ(grid_->TextMatrix(2, 0), "Mid");
    EXPECT_EQ(grid_->RowData(2), 0);
    EXPECT_EQ(grid_->RowData(3), 20);
    grid_->SortNumericAscending(1);
    EXPECT_EQ(grid_->TextMatrix(4, 0), "Mid");
    EXPECT_EQ(grid_->RowData(3), 30);
    grid_->RemoveItem(1);
    EXPECT_EQ(grid_->Rows(), 4);
    EXPECT_EQ(grid_->TextMatrix(1, 0), "East");
}

TEST_F(FlexGridShape, CurrentCell_IsValidWheneverThereIsARow) {
    FillList();
    EXPECT_EQ(Current(), Cell(1, 0));
    grid_->Select(3, 2);
    grid_->RemoveItem(3);
    EXPECT_EQ(Current(), Cell(2, 2));
    grid_->SetRows(1);
    EXPECT_EQ(Current(), Cell(0, 0));
    EXPECT_FALSE(grid_->currentIndex().isValid());
    grid_->AddItem("");
    EXPECT_TRUE(grid_->currentIndex().isValid());
    EXPECT_EQ(grid_->Row(), 1);
}

TEST_F(FlexGridShape, ProgramsOwnChanges_AreQuiet) {
    EditOnEntering();
    FillList();
    grid_->SetTextMatrix(1, 0, "x");
    grid_->RemoveItem(1);
    grid_->SortNumericAscending(1);
    EXPECT_EQ(TakeLog(), QStringList());
}

TEST_F(FlexGridShape, HeaderClick_LeavesCurrentCell) {
    FillList();
    EditOnEntering();
    Show();
    grid_->Select(2, 1);
    TakeLog();
    const QRect rect = grid_->CellRect(0, 0);
    EXPECT_LT(rect.top(), 0);
    const QPoint point = grid_->viewport()->mapTo(&window_, rect.center());
    QTest::mouseClick(window_.windowHandle(), Qt::LeftButton, {}, point);
    EXPECT_EQ(Current(), Cell(2, 1));
    EXPECT_EQ(TakeLog(), QStringList({"Click"}));
}

TEST_F(FlexGridShape, CellRect_ScrollsTheCellIntoView) {
    FillList();
    grid_->SetRows(200);
    for (int col = 0; col < 3; ++col) {
        grid_->SetColWidth(col, 6000);
    }
    Show();
    EXPECT_TRUE(grid_->viewport()->rect().contains(grid_->CellRect(150, 0).center()));
    const QRect header = grid_->CellRect(0, 2);
    EXPECT_GE(header.left(), 0);
    EXPECT_LE(header.right(), grid_->viewport()->width());
    EXPECT_GT(grid_->horizontalScrollBar()->value(), 0);
}

TEST_F(FlexGridShape, Header_GrowsWithItsLinesAndMergesEqualTexts) {
    grid_->SetFixedRows(2);
    grid_->SetCols(3);
    grid_->SetRows(4);
    const char* texts[2][3] = {{"Fire size, in acres", "Fire size, in acres", "Cost\rper acre"},
                               {"From", "To", "Cost\rper acre"}};
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < 3; ++col) {
            grid_->SetTextMatrix(row, col, texts[row][col]);
        }
    }
    grid_->SetMergeFixed(true);
    grid_->SetRowNameColumn(0);
    grid_->SetTextMatrix(3, 0, "11");
    Show();
    const int line = grid_->horizontalHeader()->fontMetrics().lineSpacing();
    EXPECT_GE(grid_->horizontalHeader()->height(), 2 * line);
    EXPECT_LE(grid_->horizontalHeader()->height(), 4 * line);
    EXPECT_EQ(grid_->CellName(3, 1), "Fire size, in acres, To, 11");
    EXPECT_EQ(grid_->CellName(2, 2), "Cost per acre, row 1");
    EXPECT_EQ(grid_->CellRect(0, 0).bottom() + 1, grid_->CellRect(1, 0).top());
    // Fitted to its own heading, not to the one it shares.
    grid_->resizeColumnToContents(1);
    EXPECT_LT(grid_->columnWidth(1), grid_->fontMetrics().horizontalAdvance("Fire size, in acres"));
    EXPECT_GT(grid_->columnWidth(1), grid_->fontMetrics().horizontalAdvance("To"));
}

TEST_F(FlexGridShape, CutText_IsShownInAToolTip) {
    FillList();
    grid_->SetTextMatrix(1, 0, QString(80, 'w'));
    Show();
    const auto tipAt = [&](int row) {
        const QPoint place = grid_->CellRect(row, 0).center();
        QHelpEvent help(QEvent::ToolTip, place, grid_->viewport()->mapToGlobal(place));
        QApplication::sendEvent(grid_->viewport(), &help);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    EXPECT_EQ(tipAt(1), QString(80, 'w'));
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    EXPECT_EQ(tipAt(2), "");
}

TEST_F(FlexGridShape, List_IsNeverEditedAndReportsEnterAsClick) {
    FillList();
    Listen();
    Show();
    Key(Qt::Key_Tab);
    EXPECT_TRUE(grid_->hasFocus());
    Key(Qt::Key_Down);
    Type("x");
    EXPECT_FALSE(grid_->Editing());
    Type("s");
    Key(Qt::Key_Return);
    EXPECT_EQ(TakeLog(), QStringList({"Click"}));
    Key(Qt::Key_Tab);
    EXPECT_TRUE(after_->hasFocus());
}

TEST_F(FlexGridShape, ShiftArrows_SelectABlockAndCopyIt) {
    FillList();
    grid_->SetTextMatrix(2, 0, "a\"b");
    EditOnEntering();
    Show();
    ClickCell(1, 0);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_FALSE(grid_->Editing());
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(grid_->Clip(), "North\t1\r\n\"a\"\"b\"\t2\r\n");
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), grid_->Clip());
}

TEST_F(FlexGridShape, Dragging_SelectsABlock) {
    FillList();
    EditOnEntering();
    Show();
    QWindow* window = window_.windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, InWindow(1, 0));
    QTest::mouseMove(window, InWindow(2, 1));
    QTest::mouseRelease(window, Qt::LeftButton, {}, InWindow(2, 1));
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(grid_->Clip(), "North\t1\r\nEast\t2\r\n");
    ClickCell(3, 0);
    EXPECT_EQ(grid_->Clip(), "South");
}

TEST_F(FlexGridShape, PastedBlock_IsEditedCellByCell) {
    FillList();
    EditOnEntering();
    Show();
    ClickCell(2, 0);
    TakeLog();
    const support::Answers answers;
    grid_->SetEditSelText("\"We\"\"st\"\t7\r\nx\t8\r\nbeyond\t9\r\n");
    EXPECT_EQ(grid_->TextMatrix(2, 0), "We\"st");
    EXPECT_EQ(grid_->TextMatrix(2, 1), "7");
    EXPECT_EQ(grid_->TextMatrix(3, 0), "x");
    EXPECT_EQ(grid_->TextMatrix(3, 1), "8");
    EXPECT_EQ(grid_->Rows(), 4);
    EXPECT_TRUE(log_.contains("Up 3 1 8"));
    EXPECT_TRUE(log_.contains("After 3 1 8"));
    EXPECT_EQ(Current(), Cell(2, 0));
}

TEST_F(FlexGridShape, CutOfABlock_EmptiesItsCells) {
    FillList();
    EditOnEntering();
    Show();
    ClickCell(1, 1);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "1\r\n2\r\n");
    EXPECT_EQ(grid_->TextMatrix(1, 1), "");
    EXPECT_EQ(grid_->TextMatrix(2, 1), "");
    EXPECT_TRUE(log_.contains("Up 2 1 "));
}

TEST_F(FlexGridShape, CurrentCell_IsHighlightedOnlyWhereTheKeyboardIs) {
    FillList();
    Listen();
    Show();
    const auto ground = [&] {
        const QPoint corner = grid_->CellRect(1, 1).topLeft() + QPoint(4, 4);
        const QImage picture = grid_->viewport()->grab().toImage();
        return picture.pixelColor((QPointF(corner) * picture.devicePixelRatio()).toPoint());
    };
    grid_->Select(1, 1);
    EXPECT_EQ(ground(), grid_->palette().color(QPalette::Base));
    grid_->setFocus();
    EXPECT_NE(ground(), grid_->palette().color(QPalette::Base));
}

TEST(FlexGridClipTest, QuotedCells_ComeBackAsTheyWere) {
    const FlexGridClip::Block block = {{"a\tb", "line\r\nbreak"}, {"\"q\"", ""}};
    EXPECT_EQ(FlexGridClip::FromText(FlexGridClip::ToText(block)), block);
    EXPECT_EQ(FlexGridClip::FromText(""), FlexGridClip::Block());
    EXPECT_EQ(FlexGridClip::FromText("a\nb"), FlexGridClip::Block({{"a"}, {"b"}}));
    EXPECT_EQ(FlexGridClip::FromText("\"open\tx"), FlexGridClip::Block({{"\"open", "x"}}));
    EXPECT_EQ(FlexGridClip::FromText("5\" hose\t1"), FlexGridClip::Block({{"5\" hose", "1"}}));
}

// Walks the whole accessible tree as a screen reader would.
int WalkAccessible(QAccessibleInterface* node, int depth = 0) {
    int seen = 1;
    for (const auto text : {QAccessible::Name, QAccessible::Description, QAccessible::Value}) {
        (void)node->text(text);
    }
    (void)node->state();
    (void)node->rect();
    (void)node->role();
    (void)node->focusChild();
    if (auto* table = node->tableInterface()) {
        (void)table->selectedCells();
        (void)table->selectedRows();
        (void)table->columnDescription(0);
        if (table->rowCount() > 0 && table->columnCount() > 0) {
            (void)table->cellAt(0, 0);
        }
        (void)table->caption();
    }
    for (int i = 0; i < node->childCount() && depth < 8; ++i) {
        if (QAccessibleInterface* child = node->child(i)) {
            (void)node->indexOfChild(child);
            seen += WalkAccessible(child, depth + 1);
        }
    }
    return seen;
}

TEST_F(FlexGridShape, AccessibleTree_IsWholeEmptyAndFilled) {
    QAccessible::setActive(true);
    EditOnEntering();
    Show();
    EXPECT_GT(WalkAccessible(QAccessible::queryAccessibleInterface(grid_)), 0);
    grid_->SetFormatString("Name|# RLs|Cost|Key");
    EXPECT_GT(WalkAccessible(QAccessible::queryAccessibleInterface(grid_)), 0);
    FillList();
    EXPECT_GT(WalkAccessible(QAccessible::queryAccessibleInterface(grid_)), 12);
    auto* table = QAccessible::queryAccessibleInterface(grid_)->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->cellAt(1, 2)->text(QAccessible::Name), "Cost, East: $2,000");
    ClickCell(2, 0);
    EXPECT_GT(WalkAccessible(QAccessible::queryAccessibleInterface(grid_)), 12);
    grid_->SetRows(1);
    EXPECT_GT(WalkAccessible(QAccessible::queryAccessibleInterface(grid_)), 0);
}

TEST_F(FlexGridShape, AccessibleHeaders_NameColumnsAndRows) {
    FillList();
    grid_->SetTextMatrix(0, 0, "");
    grid_->SetColAccessibleName(0, "Zone");
    grid_->SetTextMatrix(3, 0, "");
    const QAbstractItemModel& model = *grid_->model();
    const auto name = [&](int section, Qt::Orientation orientation) {
        return model.headerData(section, orientation, Qt::AccessibleTextRole).toString();
    };
    EXPECT_EQ(name(0, Qt::Horizontal), "Zone");
    EXPECT_EQ(name(2, Qt::Horizontal), "Cost");
    EXPECT_EQ(name(1, Qt::Vertical), "East");
    EXPECT_EQ(name(2, Qt::Vertical), "row 3");
    EXPECT_EQ(name(3, Qt::Vertical), "");
    EXPECT_EQ(grid_->CellName(1, 0), "Zone, row 1");
    EXPECT_EQ(model.headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), "");
}

TEST_F(FlexGridShape, WideHeading_IsBrokenRatherThanMadeTiny) {
    FillList();
    grid_->SetTextMatrix(0, 2, "Suppression cost per acre");
    Show();
    const QHeaderView& header = *grid_->horizontalHeader();
    const QFontMetrics metrics = header.fontMetrics();
    const auto heightAt = [&](int pixels) {
        grid_->SetColWidth(2, pixels * 15);
        QCoreApplication::processEvents();
        return header.height();
    };
    const int whole = metrics.horizontalAdvance("Suppression cost per acre");
    const int one = heightAt(2 * whole);
    EXPECT_EQ(heightAt(metrics.horizontalAdvance("Suppression cost") + 20),
              one + metrics.lineSpacing());
    EXPECT_EQ(heightAt(whole + 20), one);
}

TEST_F(FlexGridShape, HeadingWhoseOwnLinesDoNotFit_IsBrokenAnewAsAWhole) {
    FillList();
    grid_->SetTextMatrix(0, 2, "Suppression cost\rper acre");
    Show();
    const QFontMetrics metrics = grid_->horizontalHeader()->fontMetrics();
    grid_->SetColWidth(2, (metrics.horizontalAdvance("Suppression cost") - 4) * 15);
    QCoreApplication::processEvents();
    EXPECT_LT(grid_->horizontalHeader()->height(), 3 * metrics.lineSpacing()) << "two lines";
}

}  // namespace
