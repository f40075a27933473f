#include <gtest/gtest.h>

#include <QDialog>
#include <QGuiApplication>
#include <QTest>
#include <QWindow>

#include "platform/dialogs/RunModal.h"
#include "support/Answers.h"

namespace {

using support::OnNext;

TEST(RunModal, GivesTheKeyboardBackToTheWindowBehind) {
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QDialog dialog(&window);
    OnNext<QDialog> answer([](QDialog& shown) { shown.accept(); });
    EXPECT_EQ(platform::RunModal(dialog), QDialog::Accepted);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return QGuiApplication::focusWindow() == window.windowHandle(); }));
}

}  // namespace
