// Playing the user in a grid whose cells are edited when they are entered.
#include <QClipboard>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <functional>
#include <iterator>
#include <random>

#include "FlexGridFixture.h"
#include "support/Answers.h"

namespace {

class FlexGridEditing : public FlexGridTest {
protected:
    void SetUp() override {
        FlexGridTest::SetUp();
        FillList();
        EditOnEntering();
        Show();
    }

    // Opens the menu where the keyboard is and takes one of its entries.
    void Choose(const char* entry) {
        QWidget* place = grid_->Editing() ? static_cast<QWidget*>(grid_->findChild<QLineEdit*>())
                                          : grid_->viewport();
        QContextMenuEvent open(QContextMenuEvent::Mouse, QPoint(2, 2),
                               place->mapToGlobal(QPoint(2, 2)));
        QApplication::sendEvent(place, &open);
        auto* action = grid_->findChild<QAction*>(QString::fromLatin1(entry));
        ASSERT_NE(action, nullptr);
        EXPECT_TRUE(action->isEnabled()) << entry;
        action->trigger();
        delete grid_->findChild<QMenu*>("mnuCell");
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }
};

TEST_F(FlexGridEditing, Click_EntersAndEditsCell) {
    ClickCell(2, 0);
    EXPECT_EQ(Current(), Cell(2, 0));
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(grid_->EditText(), "East");
    EXPECT_EQ(grid_->EditSelText(), "East");
    EXPECT_EQ(TakeLog(), QStringList({"Enter 2 0", "Click"}));
}

TEST_F(FlexGridEditing, Click_OnCurrentCell_EntersIt) {
    ClickCell(1, 0);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(Current(), Cell(1, 0));
}

TEST_F(FlexGridEditing, Typing_ReportsEachKeyAroundItsChange) {
    ClickCell(1, 0);
    TakeLog();
    Type("ab");
    EXPECT_EQ(TakeLog(), QStringList({"Press a", "Change a", "Up 1 0 a", "Press b", "Change ab",
                                      "Up 1 0 ab"}));
    EXPECT_EQ(grid_->TextMatrix(1, 0), "North");
}

TEST_F(FlexGridEditing, Enter_StoresAndMovesDown) {
    ClickCell(1, 0);
    Type("x");
    TakeLog();
    Key(Qt::Key_Return);
    EXPECT_EQ(grid_->TextMatrix(1, 0), "x");
    EXPECT_EQ(Current(), Cell(2, 0));
    EXPECT_TRUE(grid_->Editing());
    // The release of the Enter key arrives in the next cell and means nothing there.
    EXPECT_EQ(TakeLog(), QStringList({"After 1 0 x", "Enter 2 0"}));
}

TEST_F(FlexGridEditing, Enter_InLastRow_StoresAndStays) {
    ClickCell(3, 0);
    Type("x");
    Key(Qt::Key_Return);
    EXPECT_EQ(grid_->TextMatrix(3, 0), "x");
    EXPECT_EQ(Current(), Cell(3, 0));
    EXPECT_FALSE(grid_->Editing());
    EXPECT_TRUE(grid_->hasFocus());
}

TEST_F(FlexGridEditing, Tab_SkipsHiddenColumnsAndLeavesBehindLastCell) {
    ClickCell(3, 1);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Current(), Cell(3, 2));
    Type("5");
    Key(Qt::Key_Tab);
    EXPECT_EQ(grid_->TextMatrix(3, 2), "5");
    EXPECT_FALSE(grid_->Editing());
    EXPECT_TRUE(after_->hasFocus());
}

TEST_F(FlexGridEditing, Tab_AtRowsEnd_GoesToNextRow) {
    ClickCell(1, 2);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Current(), Cell(2, 0));
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(Current(), Cell(1, 2));
    EXPECT_TRUE(grid_->Editing());
}

TEST_F(FlexGridEditing, Backtab_InFirstCell_LeavesGrid) {
    ClickCell(1, 0);
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(before_->hasFocus());
    EXPECT_FALSE(grid_->Editing());
}

TEST_F(FlexGridEditing, ControlTab_LeavesGridFromAnyCell) {
    ClickCell(2, 1);
    Type("9");
    Key(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(grid_->TextMatrix(2, 1), "9");
    EXPECT_TRUE(after_->hasFocus());
}

TEST_F(FlexGridEditing, TabIntoGrid_MarksCurrentCellAndOpensNoEditor) {
    Key(Qt::Key_Tab);
    EXPECT_TRUE(grid_->hasFocus());
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(TakeLog(), QStringList({"Enter 1 0"}));
    // The next key opens it.
    Type("x");
    EXPECT_EQ(grid_->EditText(), "x");
}

TEST_F(FlexGridEditing, Enter_OnAMarkedCell_OpensItAndStays) {
    Key(Qt::Key_Tab);
    Key(Qt::Key_Return);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(Current(), Cell(1, 0));
    EXPECT_EQ(grid_->EditSelText(), "North");
    Key(Qt::Key_Return);
    EXPECT_EQ(Current(), Cell(2, 0));
}

TEST_F(FlexGridEditing, ClickOnTheOpenCell_KeepsAllSelected) {
    ClickCell(1, 1);
    Type("5");
    Key(Qt::Key_Return);
    ASSERT_TRUE(grid_->Editing());
    ClickCell(2, 1);
    EXPECT_EQ(grid_->EditSelText(), "2");
    Type("25");
    EXPECT_EQ(grid_->EditText(), "25");
    // Once something was typed a click gives a caret.
    ClickCell(2, 1);
    EXPECT_EQ(grid_->EditSelText(), "");
    EXPECT_EQ(Current(), Cell(2, 1));
}

TEST_F(FlexGridEditing, QuickClicksWithKeysBetween_AreNoDoubleClick) {
    QWindow* window = window_.windowHandle();
    ClickCell(1, 1);
    Type("5");
    Key(Qt::Key_Return);
    const QPoint place = InWindow(1, 1);
    QTest::mouseDClick(window, Qt::LeftButton, {}, place);
    EXPECT_TRUE(grid_->findChild<QLineEdit*>()->selectedText().isEmpty());
    Key(Qt::Key_Escape);
    ClickCell(2, 1);
    Type("7");
    Key(Qt::Key_Up);
    // The second press of a double click comes after keys.
    QMouseEvent press(QEvent::MouseButtonDblClick, grid_->CellRect(2, 1).center(),
                      grid_->viewport()->mapToGlobal(grid_->CellRect(2, 1).center()),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(grid_->viewport(), &press);
    EXPECT_EQ(grid_->EditSelText(), "7");
    Type("12");
    EXPECT_EQ(grid_->EditText(), "12");
}

TEST_F(FlexGridEditing, DoubleAndTripleClick_GiveACaret) {
    QWindow* window = window_.windowHandle();
    const QPoint place = InWindow(1, 0);
    QTest::mouseClick(window, Qt::LeftButton, {}, place);
    EXPECT_EQ(grid_->EditSelText(), "North");
    QTest::mouseDClick(window, Qt::LeftButton, {}, place);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(grid_->EditSelText(), "");
    QTest::mouseClick(window, Qt::LeftButton, {}, place);
    EXPECT_EQ(grid_->EditSelText(), "");
    EXPECT_EQ(grid_->EditText(), "North");
}

TEST_F(FlexGridEditing, DragFromTheOpenCell_SelectsABlock) {
    ClickCell(1, 0);
    QWindow* window = window_.windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, InWindow(1, 0));
    QTest::mouseMove(window, InWindow(2, 1));
    QTest::mouseRelease(window, Qt::LeftButton, {}, InWindow(2, 1));
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(grid_->Clip(), "North\t1\r\nEast\t2\r\n");
}

TEST_F(FlexGridEditing, HomeAndShiftArrows_OnAnUntouchedCell_MoveOverCells) {
    ClickCell(2, 1);
    Key(Qt::Key_Home);
    EXPECT_EQ(Current(), Cell(2, 0));
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(grid_->Clip(), "East\t2\r\n");
    ClickCell(2, 1);
    Type("34");
    Key(Qt::Key_Home);
    Type("9");
    EXPECT_EQ(grid_->EditText(), "934");
}

TEST_F(FlexGridEditing, FrameKeys_PassThroughTheEditorAndTheGrid) {
    for (const bool open : {true, false}) {
        ClickCell(2, 0);
        if (!open) {
            Key(Qt::Key_Escape);
        }
        auto* receiver = QApplication::focusWidget();
        for (const auto& [key, modifier] : {std::pair(Qt::Key_PageDown, Qt::ControlModifier),
                                            std::pair(Qt::Key_PageUp, Qt::ControlModifier),
                                            std::pair(Qt::Key_Down, Qt::AltModifier)}) {
            QKeyEvent press(QEvent::KeyPress, key, modifier);
            press.setAccepted(true);
            QApplication::sendEvent(receiver, &press);
            EXPECT_FALSE(press.isAccepted()) << key;
            EXPECT_EQ(Current(), Cell(2, 0));
        }
    }
}

TEST_F(FlexGridEditing, Arrows_EndEditAndMove) {
    ClickCell(2, 1);
    Type("8");
    Key(Qt::Key_Down);
    EXPECT_EQ(grid_->TextMatrix(2, 1), "8");
    EXPECT_EQ(Current(), Cell(3, 1));
    Key(Qt::Key_Up);
    EXPECT_EQ(Current(), Cell(2, 1));
    Key(Qt::Key_Right);
    EXPECT_EQ(Current(), Cell(2, 2));
    Key(Qt::Key_Left);
    EXPECT_EQ(Current(), Cell(2, 1));
    EXPECT_TRUE(grid_->Editing());
}

TEST_F(FlexGridEditing, LeftAndRight_InsideText_MoveCursor) {
    ClickCell(1, 1);
    Type("12");
    Key(Qt::Key_Left);
    EXPECT_EQ(Current(), Cell(1, 1));
    Type("9");
    EXPECT_EQ(grid_->EditText(), "192");
    Key(Qt::Key_Right);
    EXPECT_EQ(Current(), Cell(1, 1));
    Key(Qt::Key_Right);
    EXPECT_EQ(Current(), Cell(1, 2));
    EXPECT_EQ(grid_->TextMatrix(1, 1), "192");
}

TEST_F(FlexGridEditing, DownInLastRow_KeepsEditOpen) {
    ClickCell(3, 0);
    Type("x");
    Key(Qt::Key_Down);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(grid_->EditText(), "x");
}

TEST_F(FlexGridEditing, ControlHomeAndEnd_GoToCorners) {
    ClickCell(2, 1);
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(Current(), Cell(3, 2));
    Key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(Current(), Cell(1, 0));
}

TEST_F(FlexGridEditing, PageKeys_GoToFirstAndLastRowOfAShortGrid) {
    ClickCell(2, 0);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(Current(), Cell(3, 0));
    Key(Qt::Key_PageUp);
    EXPECT_EQ(Current(), Cell(1, 0));
}

TEST_F(FlexGridEditing, Escape_RestoresCellAndReports) {
    ClickCell(1, 0);
    Type("x");
    // A form that stores at every keystroke has put the text into the cell already.
    grid_->SetTextMatrix(1, 0, "x");
    TakeLog();
    Key(Qt::Key_Escape);
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(grid_->TextMatrix(1, 0), "North");
    EXPECT_EQ(TakeLog(), QStringList({"Cancelled North"}));
}

TEST_F(FlexGridEditing, Escape_WithoutChange_ReportsNothing) {
    ClickCell(1, 0);
    TakeLog();
    Key(Qt::Key_Escape);
    EXPECT_EQ(TakeLog(), QStringList());
    EXPECT_FALSE(grid_->Editing());
}

TEST_F(FlexGridEditing, F2_PutsCursorBehindText) {
    ClickCell(1, 0);
    Key(Qt::Key_Escape);
    Key(Qt::Key_F2);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(grid_->EditSelText(), "");
    Key(Qt::Key_F2);
    EXPECT_EQ(grid_->EditSelText(), "North");
    Key(Qt::Key_F2);
    EXPECT_EQ(grid_->EditSelText(), "");
    Type("!");
    EXPECT_EQ(grid_->EditText(), "North!");
}

TEST_F(FlexGridEditing, TypingWithoutEdit_StartsOneWithThatKey) {
    ClickCell(1, 0);
    Key(Qt::Key_Escape);
    TakeLog();
    Type("z");
    EXPECT_EQ(grid_->EditText(), "z");
    EXPECT_EQ(TakeLog(), QStringList({"Enter 1 0", "Press z", "Change z", "Up 1 0 z"}));
}

TEST_F(FlexGridEditing, LossOfFocus_EndsEdit) {
    ClickCell(1, 0);
    Type("x");
    QTest::mouseClick(window_.windowHandle(), Qt::LeftButton, {}, after_->geometry().center());
    EXPECT_EQ(grid_->TextMatrix(1, 0), "x");
    EXPECT_FALSE(grid_->Editing());
    EXPECT_TRUE(after_->hasFocus());
}

TEST_F(FlexGridEditing, FocusToGridWhileEditing_GoesToEditor) {
    ClickCell(1, 0);
    Type("x");
    grid_->setFocus();
    EXPECT_TRUE(grid_->Editing());
    Type("y");
    EXPECT_EQ(grid_->EditText(), "xy");
}

TEST_F(FlexGridEditing, FinishEdit_StoresAtOnce) {
    ClickCell(1, 0);
    Type("x");
    TakeLog();
    grid_->FinishEdit();
    EXPECT_EQ(TakeLog(), QStringList({"After 1 0 x"}));
    EXPECT_FALSE(grid_->Editing());
    grid_->FinishEdit();
    EXPECT_EQ(TakeLog(), QStringList());
}

TEST_F(FlexGridEditing, KeyStillDownWhenEditEnds_IsReported) {
    ClickCell(1, 0);
    QTest::keyPress(window_.windowHandle(), 'x');
    TakeLog();
    Key(Qt::Key_Tab);
    EXPECT_EQ(TakeLog(), QStringList({"Up 1 0 x", "After 1 0 x", "Enter 1 1"}));
}

TEST_F(FlexGridEditing, SetEditSelText_CountsAsTyping) {
    ClickCell(1, 0);
    TakeLog();
    grid_->SetEditSelText("pasted");
    EXPECT_EQ(TakeLog(), QStringList({"Change pasted", "Up 1 0 pasted"}));
    EXPECT_TRUE(grid_->Editing());
}

TEST_F(FlexGridEditing, EveryPasteKeyAndMenu_IsTheSamePaste) {
    grid_->SetColDataType(2, vsFlexGrid::DataType::kCurrency);
    QGuiApplication::clipboard()->setText("-1,250.00\r\n");
    const auto menuPaste = [this] { Choose("mnuCellPaste"); };
    const std::vector<std::function<void()>> ways = {
        [this] { Key(Qt::Key_V, Qt::ControlModifier); },
        [this] { Key(Qt::Key_Insert, Qt::ShiftModifier); },
        menuPaste,
        [this] { QTest::mouseClick(window_.windowHandle(), Qt::MiddleButton, {}, InWindow(1, 2)); },
        [this] { grid_->SetEditSelText(QGuiApplication::clipboard()->text()); },
    };
    for (const bool open : {true, false}) {
        for (std::size_t way = 0; way < ways.size(); ++way) {
            grid_->SetTextMatrix(1, 2, "7");
            ClickCell(1, 2);
            if (!open) {
                Key(Qt::Key_Escape);
            }
            TakeLog();
            ways[way]();
            EXPECT_EQ(grid_->EditText(), "-1250.00") << way << open;
            EXPECT_TRUE(log_.contains("Change -1250.00")) << way;
            EXPECT_TRUE(log_.contains("Up 1 2 -1250.00")) << way;
            Key(Qt::Key_Escape);
        }
    }
}

TEST_F(FlexGridEditing, Menu_CutsCopiesAndDeletesWithoutAnEditor) {
    Key(Qt::Key_Tab);
    Choose("mnuCellCopy");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "North");
    Choose("mnuCellCut");
    EXPECT_EQ(grid_->TextMatrix(1, 0), "");
    grid_->SetTextMatrix(1, 0, "again");
    Choose("mnuCellDelete");
    EXPECT_EQ(grid_->TextMatrix(1, 0), "");
}

TEST_F(FlexGridEditing, DroppedText_ArrivesWholeOrNotAtAll) {
    grid_->SetColDataType(2, vsFlexGrid::DataType::kCurrency);
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [this](int, int, bool*) { grid_->SetEditMaxLength(7); });
    ClickCell(1, 2);
    Type("7400");
    auto* editor = grid_->findChild<QLineEdit*>();
    QMimeData data;
    data.setText("12,345");
    const support::Answers answers;
    QDragEnterEvent enter(QPoint(4, 4), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(editor, &enter);
    QDropEvent drop(QPointF(editor->width() - 2, 4), Qt::CopyAction, &data, Qt::LeftButton,
                    Qt::NoModifier);
    QApplication::sendEvent(editor, &drop);
    EXPECT_EQ(grid_->EditText(), "7400");
    EXPECT_EQ(answers.Messages().size(), 1U);
}

TEST_F(FlexGridEditing, ComposedText_OpensTheCellAndKeepsToTheLimit) {
    grid_->SetEditMaxLength(3);
    Key(Qt::Key_Tab);
    QInputMethodEvent composed;
    composed.setCommitString(QString::fromUtf8("\xc3\xa9"));
    QApplication::sendEvent(grid_, &composed);
    EXPECT_EQ(grid_->EditText(), QString::fromUtf8("\xc3\xa9"));
    QInputMethodEvent more;
    more.setCommitString("abcdef");
    QApplication::sendEvent(grid_->findChild<QLineEdit*>(), &more);
    EXPECT_LE(grid_->EditText().size(), 3);
}

TEST_F(FlexGridEditing, MaxLength_LimitsTypingButNeverCutsWhatIsThere) {
    grid_->SetEditMaxLength(3);
    ClickCell(1, 0);
    EXPECT_EQ(grid_->EditText(), "North");
    Key(Qt::Key_F2);
    Type("x");
    EXPECT_EQ(grid_->EditText(), "North");
    Key(Qt::Key_Backspace);
    EXPECT_EQ(grid_->EditText(), "Nort");
    Key(Qt::Key_F2);
    Type("abcd");
    EXPECT_EQ(grid_->EditText(), "abc");
    ClickCell(1, 1);
    Type("1234");
    EXPECT_EQ(grid_->EditText(), "123");
}

TEST_F(FlexGridEditing, BeforeEdit_CanRefuse) {
    QObject::connect(grid_, &vsFlexGrid::BeforeEdit, grid_,
                     [](int, int col, bool* cancel) { *cancel = col == 1; });
    ClickCell(1, 1);
    EXPECT_EQ(Current(), Cell(1, 1));
    EXPECT_FALSE(grid_->Editing());
    Type("5");
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(grid_->TextMatrix(1, 1), "1");
    Key(Qt::Key_Tab);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(Current(), Cell(1, 2));
}

TEST_F(FlexGridEditing, RemovedRow_TakesItsEditAlong) {
    ClickCell(2, 0);
    Type("x");
    TakeLog();
    grid_->RemoveItem(2);
    EXPECT_FALSE(grid_->Editing());
    EXPECT_EQ(TakeLog(), QStringList());
    EXPECT_EQ(grid_->TextMatrix(2, 0), "South");
    EXPECT_EQ(Current(), Cell(2, 0));
}

TEST_F(FlexGridEditing, NewRowMadeCurrent_IsEditedWithFocus) {
    ClickCell(1, 1);
    grid_->AddItem(QString());
    grid_->SetRow(4);
    grid_->SetTextMatrix(4, 1, "1");
    grid_->SetCol(0);
    grid_->setFocus();
    EXPECT_EQ(Current(), Cell(4, 0));
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(grid_->TextMatrix(4, 1), "1");
    Type("West");
    Key(Qt::Key_Return);
    EXPECT_EQ(grid_->TextMatrix(4, 0), "West");
}

TEST_F(FlexGridEditing, SetTextMatrix_OfEditedCell_ShowsInEditor) {
    ClickCell(1, 1);
    grid_->SetTextMatrix(1, 1, "7");
    EXPECT_EQ(grid_->EditText(), "7");
    grid_->FinishEdit();
    EXPECT_EQ(grid_->TextMatrix(1, 1), "7");
}

TEST_F(FlexGridEditing, AfterEdit_MaySortAndEnterStillMoves) {
    QObject::connect(grid_, &vsFlexGrid::AfterEdit, grid_,
                     [this](int, int) { grid_->SortNumericAscending(1); });
    ClickCell(1, 1);
    Type("9");
    Key(Qt::Key_Return);
    EXPECT_EQ(grid_->TextMatrix(3, 0), "North");
    EXPECT_EQ(grid_->RowData(3), 0);
    EXPECT_EQ(Current(), Cell(2, 1));
}

TEST_F(FlexGridEditing, ScrollingWhileEditing_KeepsEditorOnItsCell) {
    grid_->SetRows(100);
    ClickCell(5, 0);
    Type("x");
    QCoreApplication::processEvents();
    const QRect rect = grid_->CellRect(60, 0);
    EXPECT_TRUE(grid_->viewport()->rect().contains(rect.center()));
    EXPECT_TRUE(grid_->Editing());
    const QRect cell = grid_->CellRect(5, 0);
    EXPECT_EQ(grid_->findChild<QLineEdit*>()->geometry(), cell.adjusted(0, 0, -1, -1));
}

TEST_F(FlexGridEditing, MenuBarFocus_KeepsEditAndSelection) {
    ClickCell(1, 0);
    auto* editor = grid_->findChild<QLineEdit*>();
    QFocusEvent toMenu(QEvent::FocusOut, Qt::MenuBarFocusReason);
    QApplication::sendEvent(editor, &toMenu);
    EXPECT_TRUE(grid_->Editing());
    EXPECT_EQ(grid_->EditSelText(), "North");
}

TEST_F(FlexGridEditing, EditorName_HoldsHeadingAndRow) {
    ClickCell(2, 2);
    EXPECT_EQ(grid_->findChild<QLineEdit*>()->accessibleName(), "Cost, East");
}

TEST_F(FlexGridEditing, DestructionWhileEditing_ReportsNothing) {
    ClickCell(1, 0);
    Type("x");
    TakeLog();
    delete grid_;
    EXPECT_EQ(log_, QStringList());
}

TEST_F(FlexGridEditing, Undo_TakesTypingBack) {
    ClickCell(1, 0);
    Type("x");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid_->EditText(), "North");
}

// A form that stores each value where the grid reports it, and a user who does anything at all.
class FlexGridWalk : public FlexGridEditing, public testing::WithParamInterface<unsigned> {
protected:
    void SetUp() override {
        FlexGridEditing::SetUp();
        const auto store = [this](int row, int col) {
            stored_[row - 1][col] =
                grid_->Editing() ? grid_->EditText() : grid_->TextMatrix(row, col);
        };
        for (int row = 1; row <= 3; ++row) {
            for (int col = 0; col < 3; ++col) {
                store(row, col);
            }
        }
        QObject::connect(grid_, &vsFlexGrid::KeyUpEdit, grid_,
                         [store](int row, int col, int) { store(row, col); });
        QObject::connect(grid_, &vsFlexGrid::EditCancelled, grid_, store);
    }

    void AnyAction() {
        constexpr Qt::Key kKeys[] = {
            Qt::Key_Up,     Qt::Key_Down,     Qt::Key_Left, Qt::Key_Right,    Qt::Key_Tab,
            Qt::Key_Return, Qt::Key_Home,     Qt::Key_End,  Qt::Key_F2,       Qt::Key_Escape,
            Qt::Key_Delete, Qt::Key_PageDown, Qt::Key_Z,    Qt::Key_Backspace};
        constexpr Qt::KeyboardModifiers kModifiers[] = {
            Qt::NoModifier, Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier};
        switch (random_() % 8) {
            case 0:
                ClickCell(1 + Any(3), Any(3));
                break;
            case 1:
                grid_->SetEditSelText(Any(2) == 0 ? "1\t2\r\n3\t4\r\n" : "p");
                break;
            case 2:
                grid_->ClearClip();
                break;
            case 3:
                // Pressed here, released wherever the next action leads.
                QTest::keyPress(window_.windowHandle(), 'q');
                break;
            case 4:
            case 5:
                Type(QString::number(Any(10)));
                break;
            default:
                Key(kKeys[Any(std::size(kKeys))], kModifiers[Any(std::size(kModifiers))]);
        }
    }
    int Any(std::size_t count) { return static_cast<int>(random_() % count); }

    support::Answers answers_;
    std::mt19937 random_{GetParam()};
    QString stored_[3][3];
};

TEST_P(FlexGridWalk, WhateverTheUserDoes_WhatIsShownIsStored) {
    for (int step = 0; step < 400; ++step) {
        AnyAction();
        if (!before_->hasFocus() && !after_->hasFocus()) {
            ASSERT_TRUE(grid_->currentIndex().isValid());
        } else {
            ASSERT_FALSE(grid_->Editing());
            grid_->setFocus();
        }
    }
    grid_->FinishEdit();
    for (int row = 1; row <= 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            EXPECT_EQ(stored_[row - 1][col], grid_->TextMatrix(row, col)) << row << ", " << col;
        }
        EXPECT_EQ(grid_->TextMatrix(row, 3), QString::number(row * 7));
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, FlexGridWalk, testing::Range(1U, 26U));

}  // namespace
