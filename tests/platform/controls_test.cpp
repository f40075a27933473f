#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include "platform/controls/ButtonMnemonics.h"
#include "platform/controls/ClipboardShortcuts.h"
#include "platform/controls/FLabel.h"
#include "platform/controls/FontScale.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/vsIndexTab.h"

namespace {

TEST(FLabelTest, Marks_BecomeParagraphsAndSpace) {
    const QString caption = "|BEFORE:90|One  two|CR|   three|BEFORE:15||CR|<b>|CR||BEFORE:0|x";
    EXPECT_EQ(FLabel::ToPlainText(caption), "One  two\n   three\n<b>\nx");
    const std::vector<WrappedText::Paragraph> paragraphs = FLabel::Paragraphs(caption);
    ASSERT_EQ(paragraphs.size(), 4U);
    const std::vector<std::pair<QString, int>> wanted{
        {"One  two", 6}, {"   three", 6}, {"<b>", 1}, {"x", 0}};
    for (std::size_t each = 0; each < wanted.size(); ++each) {
        EXPECT_EQ(paragraphs[each].text, wanted[each].first);
        EXPECT_EQ(paragraphs[each].before, wanted[each].second);
    }
}

TEST(FLabelTest, Height_GrowsAsTheWidthFalls) {
    FLabel label;
    label.SetCaption("one two three four");
    const int line = label.fontMetrics().lineSpacing();
    const int word = label.fontMetrics().horizontalAdvance("three") + 2;
    EXPECT_EQ(label.heightForWidth(10 * word), label.heightForWidth(20 * word));
    EXPECT_NEAR(label.heightForWidth(word), 4 * label.heightForWidth(10 * word), 4);
    EXPECT_NEAR(label.heightForWidth(10 * word), line, 2);
    EXPECT_GE(label.minimumSizeHint().width(), label.fontMetrics().horizontalAdvance("three"));
    label.SetCaption("one|CR||BEFORE:150|two");
    EXPECT_NEAR(label.heightForWidth(10 * word), 2 * line + 10, 4);
}

TEST(FLabelTest, Text_IsPaintedWithinItsHeight) {
    FLabel label;
    label.SetCaption("one two three four|CR||BEFORE:300|five six");
    const int width = label.minimumSizeHint().width();
    label.setAutoFillBackground(true);
    label.resize(width, label.heightForWidth(width) + 200);
    const QImage picture = label.grab().toImage();
    const QRgb ground = picture.pixel(width - 1, picture.height() - 1);
    int last = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            last = picture.pixel(x, y) == ground ? last : y;
        }
    }
    const int line = label.fontMetrics().height();
    EXPECT_LT(last, label.heightForWidth(width));
    EXPECT_GT(last, label.heightForWidth(width) - line);
}

TEST(FLabelTest, LargerFont_TakesMoreRoom) {
    FLabel label;
    label.SetCaption("one two three four");
    const QSize before = label.minimumSizeHint();
    QFont larger = label.font();
    larger.setPointSizeF(2 * larger.pointSizeF());
    label.setFont(larger);
    EXPECT_GT(label.minimumSizeHint().width(), before.width());
    EXPECT_GT(label.minimumSizeHint().height(), before.height());
}

TEST(FLabelTest, HalfMarks_AreText) {
    for (const char* text : {"|CR", "|BEFORE:|", "|BEFORE:x|", "a|b", "|"}) {
        EXPECT_EQ(FLabel::ToPlainText(text), text);
    }
}

TEST(FLabelTest, Caption_IsKeptAsSetAndNamesTheLabel) {
    FLabel label;
    label.SetCaption("a|CR|b");
    EXPECT_EQ(label.property("Caption").toString(), "a|CR|b");
    EXPECT_EQ(label.accessibleName(), "a\nb");
    label.SetCaption("c");
    EXPECT_EQ(label.accessibleName(), "c");
    label.setAccessibleName("Overview");
    label.SetCaption("d");
    EXPECT_EQ(label.accessibleName(), "Overview");
}

TEST(SSPanelTest, Caption_IsShownAndDescribed) {
    SSPanel panel;
    panel.setProperty("Caption", "$1,234");
    EXPECT_EQ(panel.Caption(), "$1,234");
    EXPECT_EQ(panel.accessibleDescription(), "$1,234");
    EXPECT_GE(panel.sizeHint().width(), panel.fontMetrics().horizontalAdvance("$1,234"));
}

TEST(SSPanelTest, FigureWithoutRoom_IsNeverCutOrWrapped) {
    SSPanel panel;
    panel.SetCaption("-100,000,053");
    EXPECT_EQ(panel.minimumSizeHint(), panel.sizeHint());
    const auto shows = [&panel](int width) {
        panel.resize(width, 60);
        return panel.grab().toImage();
    };
    const int whole = panel.sizeHint().width();
    SSPanel marks;
    marks.SetCaption("####");
    marks.resize(whole - 10, 60);
    EXPECT_EQ(shows(whole - 10), marks.grab().toImage());
    marks.resize(whole, 60);
    EXPECT_NE(shows(whole), marks.grab().toImage());
    EXPECT_EQ(panel.accessibleDescription(), "-100,000,053");
}

TEST(SSPanelTest, Words_AreBrokenBetweenLinesAndKeepTheirSize) {
    SSPanel panel;
    panel.SetCaption("Gain or loss per acre");
    EXPECT_LT(panel.minimumSizeHint().width(), panel.sizeHint().width());
}

class IndexTabTest : public testing::Test {
protected:
    void SetUp() override {
        connect(&tab_);
        tab_.SetCaption("|One|Two|Three & more");
        tab_.SetTabVisibleByIndex(0, false);
        tab_.resize(600, 25);
        tab_.show();
        tab_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&tab_));
        EXPECT_EQ(log_, QStringList());
    }
    void connect(vsIndexTab* tab) {
        QObject::connect(tab, &vsIndexTab::Switch, tab, [this](int from, int to, bool* cancel) {
            log_ += QStringLiteral("Switch %1 %2 at %3").arg(from).arg(to).arg(tab_.CurrTab());
            *cancel = refuse_;
        });
        QObject::connect(tab, &vsIndexTab::Click, tab,
                         [this] { log_ += QStringLiteral("Click %1").arg(tab_.CurrTab()); });
    }
    QStringList TakeLog() { return std::exchange(log_, {}); }

    vsIndexTab tab_;
    QStringList log_;
    bool refuse_ = false;
};

TEST_F(IndexTabTest, SetCurrTab_SwitchesThenClicks) {
    tab_.SetCurrTab(2);
    EXPECT_EQ(TakeLog(), QStringList({"Switch 1 2 at 1", "Click 2"}));
    tab_.SetCurrTab(2);
    EXPECT_EQ(TakeLog(), QStringList());
    tab_.SetCurrTab(2, true);
    EXPECT_EQ(TakeLog(), QStringList({"Click 2"}));
}

TEST_F(IndexTabTest, CurrentTabChosenOnceMore_SaysSoAndSwitchesNothing) {
    QObject::connect(&tab_, &vsIndexTab::CurrentChosen, &tab_, [this] { log_ += "Current"; });
    const auto click = [this](int tab, Qt::MouseButton button) {
        QTest::mouseClick(&tab_, button, {}, tab_.tabRect(tab).center());
    };
    click(1, Qt::LeftButton);
    EXPECT_EQ(TakeLog(), QStringList("Current"));
    click(1, Qt::RightButton);
    EXPECT_EQ(TakeLog(), QStringList());
    click(2, Qt::LeftButton);
    EXPECT_EQ(TakeLog(), QStringList({"Switch 1 2 at 1", "Click 2"}));
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&tab_, key);
        EXPECT_EQ(TakeLog(), QStringList("Current"));
    }
}

TEST_F(IndexTabTest, RefusedSwitch_LeavesTheOldTab) {
    refuse_ = true;
    tab_.SetCurrTab(3);
    EXPECT_EQ(tab_.CurrTab(), 1);
    EXPECT_EQ(TakeLog(), QStringList({"Switch 1 3 at 1"}));
}

TEST_F(IndexTabTest, EveryRoad_CanBeRefused) {
    QWindow* window = tab_.windowHandle();
    QTest::mouseClick(window, Qt::LeftButton, {}, tab_.tabRect(3).center());
    EXPECT_EQ(TakeLog(), QStringList({"Switch 1 3 at 1", "Click 3"}));
    refuse_ = true;
    QTest::mouseClick(window, Qt::LeftButton, {}, tab_.tabRect(1).center());
    tab_.setFocus();
    QTest::keyClick(window, Qt::Key_Left);
    QTest::keyClick(window, Qt::Key_Home);
    tab_.setCurrentIndex(2);
    EXPECT_EQ(tab_.CurrTab(), 3);
    EXPECT_EQ(TakeLog(), QStringList({"Switch 3 1 at 3", "Switch 3 2 at 3", "Switch 3 1 at 3",
                                      "Switch 3 2 at 3"}));
}

TEST_F(IndexTabTest, HiddenTab_IsOutOfReach) {
    tab_.setFocus();
    QTest::keyClick(tab_.windowHandle(), Qt::Key_Left);
    QTest::keyClick(tab_.windowHandle(), Qt::Key_Home);
    tab_.setCurrentIndex(0);
    tab_.SetCurrTab(0);
    tab_.SetCurrTab(-1);
    tab_.SetCurrTab(9);
    EXPECT_EQ(tab_.CurrTab(), 1);
    EXPECT_EQ(TakeLog(), QStringList());
}

TEST_F(IndexTabTest, SwitchingInsideSwitch_IsIgnored) {
    QObject::connect(&tab_, &vsIndexTab::Switch, &tab_, [this] { tab_.SetCurrTab(3); });
    tab_.SetCurrTab(2);
    EXPECT_EQ(tab_.CurrTab(), 2);
    EXPECT_EQ(TakeLog(), QStringList({"Switch 1 2 at 1", "Click 2"}));
}

TEST_F(IndexTabTest, Wheel_ChangesNothing) {
    QWheelEvent wheel(tab_.tabRect(2).center(), tab_.mapToGlobal(tab_.tabRect(2).center()), {},
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&tab_, &wheel);
    EXPECT_EQ(tab_.CurrTab(), 1);
    EXPECT_EQ(TakeLog(), QStringList());
}

TEST_F(IndexTabTest, Strip_GrowsWithLettersThatAreLargerThanUsual) {
    EXPECT_EQ(tab_.tabText(3), "Three && more");
    const QFont old = QApplication::font();
    for (const int size : {8, 9, 10, 12, 18}) {
        QFont font = old;
        font.setPointSize(size);
        QApplication::setFont(font);
        vsIndexTab tab;
        tab.SetCaption("|One|Two");
        const int strip = vsIndexTab::StripHeight(font);
        EXPECT_EQ(strip > 25, size > 10) << size;
        EXPECT_GE(strip, 25) << size;
        EXPECT_EQ(tab.font().pointSize(), size);
        EXPECT_LE(tab.sizeHint().height(), strip) << size;
        EXPECT_LE(QFontMetrics(tab.font()).height(), strip - 6) << size;
    }
    QApplication::setFont(old);
}

TEST(FontScaleTest, GivenSizes_HoldUpToTenPointsAndGrowWithTheLineFromThere) {
    QFont font = QApplication::font();
    for (const int size : {6, 9, 10}) {
        font.setPointSize(size);
        EXPECT_EQ(platform::FontScale(font), 1) << size;
    }
    const double standard = QFontMetricsF(font).height();
    font.setPointSize(18);
    EXPECT_DOUBLE_EQ(platform::FontScale(font), QFontMetricsF(font).height() / standard);
    EXPECT_GT(platform::ScaledPixels(100, font), 150);
}

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

TEST(ButtonMnemonicTest, Key_ClicksBeforeTheNextOneIsTyped) {
    platform::InstallImmediateMnemonics();
    QMainWindow frame;
    auto* button = new QPushButton("&Add Item");
    frame.setCentralWidget(button);
    int clicks = 0;
    QObject::connect(button, &QPushButton::clicked, button, [&clicks] { ++clicks; });
    frame.show();
    frame.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&frame));
    QTest::keyClick(frame.windowHandle(), Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(clicks, 1);
    button->setEnabled(false);
    QTest::keyClick(frame.windowHandle(), Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(clicks, 1);
}

}  // namespace
