// Icons that are made when they are first drawn.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenuBar>
#include <QPixmap>
#include <QProxyStyle>
#include <QStyleFactory>

#include "platform/controls/LateIcon.h"
#include "platform/controls/LegibleStyle.h"

using platform::LegibleStyle;

namespace {

QIcon Square(const QColor& color) {
    QPixmap picture(16, 16);
    picture.fill(color);
    return picture;
}

TEST(LateIconTest, IsMadeOnce_WhenItIsFirstLookedAt) {
    int made = 0;
    const QIcon icon = platform::LateIcon([&made] {
        ++made;
        return Square(Qt::red);
    });
    const QIcon& alias = icon;
    EXPECT_EQ(made, 0);
    EXPECT_EQ(alias.pixmap(16, 16).toImage().pixelColor(8, 8), QColor(Qt::red));
    EXPECT_EQ(icon.actualSize(QSize(64, 64)), QSize(16, 16));
    EXPECT_EQ(icon.availableSizes(), QList<QSize>({QSize(16, 16)}));
    EXPECT_FALSE(icon.isNull());
    EXPECT_EQ(made, 1);
}

TEST(LateIconTest, OfNothing_IsNull) {
    EXPECT_TRUE(platform::LateIcon([] { return QIcon(); }).isNull());
}

TEST(LateIconTest, OnAScreenOfTwiceThePixels_IsAsSharpAsTheIconItself) {
    QIcon both = Square(Qt::red);
    QPixmap large(32, 32);
    large.fill(Qt::blue);
    both.addPixmap(large);
    const QIcon late = platform::LateIcon([both] { return both; });
    const QPixmap shown = late.pixmap(QSize(16, 16), 2.0);
    EXPECT_EQ(shown.size(), both.pixmap(QSize(16, 16), 2.0).size());
    EXPECT_EQ(shown.devicePixelRatio(), both.pixmap(QSize(16, 16), 2.0).devicePixelRatio());
    EXPECT_EQ(shown.toImage(), both.pixmap(QSize(16, 16), 2.0).toImage());
}

TEST(LateIconTest, ArrowOfANarrowMenuBar_LooksAsInThePlainStyle) {
    const LegibleStyle style;
    const QProxyStyle plain;
    const auto arrow = QStyle::SP_ToolBarHorizontalExtensionButton;
    const QImage ours = style.standardIcon(arrow, nullptr, nullptr).pixmap(16, 16).toImage();
    EXPECT_FALSE(ours.isNull());
    EXPECT_EQ(ours, plain.standardIcon(arrow).pixmap(16, 16).toImage());
}

}  // namespace
