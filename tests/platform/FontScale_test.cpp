#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QFontMetricsF>

#include "platform/controls/FontScale.h"

namespace {

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

}  // namespace
