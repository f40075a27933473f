#include <gtest/gtest.h>

#include <QTest>

#include "worksheets/TextBox.h"

using worksheets::TextBox;

namespace {

TEST(TextBox, EnteredByTheTabKey_SelectsItsTextAndReportsThatOnce) {
    QWidget window;
    TextBox box(&window);
    box.setText(QStringLiteral("Budget"));
    int told = 0;
    QObject::connect(&box, &TextBox::GotFocus, &box, [&told] { ++told; });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.setFocus();
    told = 0;
    box.clearFocus();
    box.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(box.selectedText(), QStringLiteral("Budget"));
    EXPECT_EQ(told, 1);
}

}  // namespace
