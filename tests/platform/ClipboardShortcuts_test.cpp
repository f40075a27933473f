#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QTest>
#include <QWindow>

#include "platform/controls/ClipboardShortcuts.h"

namespace {

// A frame with a Cut entry and a text box, as the program has them.
class ClipboardShortcutTest : public testing::Test {
protected:
    void SetUp() override {
        platform::InstallClipboardShortcutFilter();
        box_ = new QLineEdit("text");
        frame_.setCentralWidget(box_);
        cut_ = new QAction(&frame_);
        cut_->setShortcut(QKeySequence("Ctrl+X"));
        frame_.addAction(cut_);
        QObject::connect(cut_, &QAction::triggered, cut_, [this] { ++cuts_; });
        frame_.show();
        frame_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&frame_));
        box_->setFocus();
        box_->selectAll();
    }
    QMainWindow frame_;
    QLineEdit* box_ = nullptr;
    QAction* cut_ = nullptr;
    int cuts_ = 0;
};

TEST_F(ClipboardShortcutTest, Key_ReachesTheMenuEntry) {
    QTest::keyClick(frame_.windowHandle(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(cuts_, 1);
    EXPECT_EQ(box_->text(), "text");
}

TEST_F(ClipboardShortcutTest, DisabledEntry_LeavesTheKeyToTheTextBox) {
    cut_->setEnabled(false);
    QTest::keyClick(frame_.windowHandle(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(cuts_, 0);
    EXPECT_EQ(box_->text(), "");
}

TEST_F(ClipboardShortcutTest, UndoneText_ComesBackByEitherKey) {
    QTest::keyClicks(box_, "typed");
    for (const auto redo : {Qt::Key_Y, Qt::Key_Z}) {
        QTest::keyClick(frame_.windowHandle(), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_NE(box_->text(), "typed");
        QTest::keyClick(
            frame_.windowHandle(), redo,
            redo == Qt::Key_Y ? Qt::ControlModifier : Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(box_->text(), "typed");
    }
}

TEST_F(ClipboardShortcutTest, MenuByKeyboard_KeepsTheSelection) {
    QFocusEvent toMenu(QEvent::FocusOut, Qt::MenuBarFocusReason);
    QApplication::sendEvent(box_, &toMenu);
    EXPECT_EQ(box_->selectedText(), "text");
}

}  // namespace
