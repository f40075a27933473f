#include <gtest/gtest.h>

#include "platform/controls/SSPanel.h"

namespace {

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

}  // namespace
