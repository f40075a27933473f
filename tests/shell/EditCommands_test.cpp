#include "shell/EditCommands.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "platform/controls/vsFlexGrid.h"
#include "platform/system/Clipboard.h"
#include "support/LogFolder.h"

namespace {

using namespace EditCommands;

class EditCommandsTest : public testing::Test {
protected:
    void SetUp() override { platform::SetClipboardText(QStringLiteral("before")); }
    LogFolder folder_;
};

TEST_F(EditCommandsTest, Cut_NothingSelected_LeavesTheClipboardAsItWas) {
    QLineEdit box(QStringLiteral("North"));
    Execute(kCut, &box);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("before"));
    EXPECT_EQ(box.text(), QStringLiteral("North"));
}

TEST_F(EditCommandsTest, Cut_Selection_MovesItToTheClipboard) {
    QLineEdit box(QStringLiteral("North Fork"));
    box.setSelection(5, 5);
    Execute(kCut, &box);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral(" Fork"));
    EXPECT_EQ(box.text(), QStringLiteral("North"));
}

TEST_F(EditCommandsTest, Copy_Selection_LeavesTheBox) {
    QLineEdit box(QStringLiteral("North"));
    box.selectAll();
    Execute(kCopy, &box);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("North"));
    EXPECT_EQ(box.text(), QStringLiteral("North"));
}

TEST_F(EditCommandsTest, Paste_Selection_IsReplacedWithinTheLengthLimit) {
    QLineEdit box(QStringLiteral("North"));
    box.setMaxLength(6);
    box.setSelection(1, 4);
    Execute(kPaste, &box);
    EXPECT_EQ(box.text(), QStringLiteral("Nbefor"));
}

TEST_F(EditCommandsTest, Paste_ClipboardWithoutText_LeavesTheSelection) {
    platform::SetClipboardText(QString());
    QLineEdit box(QStringLiteral("North"));
    box.selectAll();
    Execute(kPaste, &box);
    EXPECT_EQ(box.text(), QStringLiteral("North"));
    QPlainTextEdit lines(QStringLiteral("one\ntwo"));
    lines.selectAll();
    Execute(kPaste, &lines);
    EXPECT_EQ(lines.toPlainText(), QStringLiteral("one\ntwo"));
}

TEST_F(EditCommandsTest, PasteAndCut_ReadOnlyBox_ChangeNothing) {
    QLineEdit box(QStringLiteral("North"));
    box.setReadOnly(true);
    box.selectAll();
    Execute(kPaste, &box);
    Execute(kCut, &box);
    EXPECT_EQ(box.text(), QStringLiteral("North"));
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("North"));
}

TEST_F(EditCommandsTest, Commands_BoxOfSeveralLines_WorkOnItsSelection) {
    QPlainTextEdit box(QStringLiteral("one\ntwo"));
    box.selectAll();
    Execute(kCut, &box);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("one\ntwo"));
    EXPECT_TRUE(box.toPlainText().isEmpty());
    Execute(kPaste, &box);
    EXPECT_EQ(box.toPlainText(), QStringLiteral("one\ntwo"));
}

TEST_F(EditCommandsTest, Commands_OtherControlsOrNone_AreIgnored) {
    QPushButton button(QStringLiteral("North"));
    for (const Command command : {kCut, kCopy, kPaste}) {
        Execute(command, &button);
        Execute(command, nullptr);
    }
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("before"));
    EXPECT_EQ(button.text(), QStringLiteral("North"));
}

TEST_F(EditCommandsTest, Commands_UnknownIndex_DoNothing) {
    QLineEdit box(QStringLiteral("North"));
    box.selectAll();
    Execute(1, &box);
    Execute(9, &box);
    EXPECT_EQ(box.text(), QStringLiteral("North"));
}

class EditCommandsInGrid : public EditCommandsTest {
protected:
    void SetUp() override {
        EditCommandsTest::SetUp();
        grid_.SetRows(3);
        grid_.SetCols(2);
        grid_.SetFixedRows(1);
        grid_.SetTextMatrix(1, 0, QStringLiteral("North"));
        grid_.show();
        grid_.Select(1, 0);
    }
    vsFlexGrid grid_;
};

TEST_F(EditCommandsInGrid, Copy_CellNotEdited_TakesTheCell) {
    Execute(kCopy, grid_.viewport());
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("North"));
}

TEST_F(EditCommandsInGrid, CutAndPaste_CellIsEdited_WorkOnTheEditorsSelection) {
    grid_.EditCell();
    ASSERT_TRUE(grid_.Editing());
    Execute(kCut, &grid_);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("North"));
    EXPECT_EQ(grid_.EditText(), QString());
    platform::SetClipboardText(QStringLiteral("South"));
    Execute(kPaste, &grid_);
    EXPECT_EQ(grid_.EditText(), QStringLiteral("South"));
    EXPECT_EQ(folder_.Trace().last(), QStringLiteral("   Paste South"));
}

TEST_F(EditCommandsInGrid, Paste_ClipboardWithoutText_LeavesTheOpenCell) {
    platform::SetClipboardText(QString());
    grid_.EditCell();
    ASSERT_EQ(grid_.EditSelText(), QStringLiteral("North"));
    Execute(kPaste, &grid_);
    EXPECT_EQ(grid_.EditText(), QStringLiteral("North"));
    EXPECT_FALSE(grid_.EditIsChanged());
}

TEST_F(EditCommandsInGrid, Cut_EmptyCell_LeavesTheClipboard) {
    grid_.Select(2, 1);
    Execute(kCut, &grid_);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("before"));
}

}  // namespace
