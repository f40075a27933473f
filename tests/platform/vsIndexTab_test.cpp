#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include "platform/controls/vsIndexTab.h"

namespace {

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

}  // namespace
