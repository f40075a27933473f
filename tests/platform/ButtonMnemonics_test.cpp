#include <gtest/gtest.h>

#include <QApplication>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QWindow>

#include "platform/controls/ButtonMnemonics.h"

namespace {

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
