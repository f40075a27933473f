#include "base/UIMode.h"

#include <gtest/gtest.h>

#include <QCursor>
#include <QGuiApplication>

#include <cstdlib>

#include "support/LogFolder.h"

using UIMode::BusyScope;

namespace {

class UIModeTest : public testing::Test {
protected:
    void SetUp() override { UIMode::Restore({}); }
    void TearDown() override { UIMode::Restore({}); }
    static bool Hourglass() {
        return QGuiApplication::overrideCursor() != nullptr &&
               QGuiApplication::overrideCursor()->shape() == Qt::WaitCursor;
    }
};

// In a process of its own, in which nothing has touched it yet.
TEST(UIModeDeathTest, ProgramStart_IsNotBusy) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(UIMode::NotBusy() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST_F(UIModeTest, BusyOn_Nested_KeepsTheHourglassUntilTheLastOff) {
    UIMode::BusyOn();
    UIMode::BusyOn();
    UIMode::BusyOn();
    for (int open = 3; open > 0; --open) {
        EXPECT_FALSE(UIMode::NotBusy());
        EXPECT_TRUE(Hourglass());
        UIMode::BusyOff();
    }
    EXPECT_TRUE(UIMode::NotBusy());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(UIModeTest, BusyScope_LeftByAnError_IsBalanced) {
    try {
        const BusyScope busy;
        throw 1;
    } catch (int) {
        EXPECT_TRUE(UIMode::NotBusy());
    }
    EXPECT_FALSE(Hourglass());
}

TEST_F(UIModeTest, BusyOff_WithoutOn_KeepsTheNextPairBusyUntilOneMoreOff) {
    UIMode::BusyOff();
    EXPECT_TRUE(UIMode::NotBusy());
    EXPECT_EQ(UIMode::Remember().counter, -1);
    UIMode::BusyOn();
    UIMode::BusyOff();
    EXPECT_EQ(UIMode::Remember().counter, -1);
    EXPECT_FALSE(UIMode::NotBusy());
    EXPECT_TRUE(Hourglass());
}

TEST_F(UIModeTest, BusyOff_OneTooFewThenOneMore_GoesOnCountingDown) {
    // From -1 one more call gives -2, never 0: the counter is not reset.
    UIMode::BusyOff();
    UIMode::BusyOff();
    EXPECT_EQ(UIMode::Remember().counter, -2);
    EXPECT_TRUE(UIMode::NotBusy());
}

TEST_F(UIModeTest, BusyMode_WritesNoEntries) {
    const LogFolder folder;
    UIMode::BusyOn();
    EXPECT_FALSE(UIMode::NotBusy());
    UIMode::BusyOff();
    EXPECT_FALSE(QFile::exists(folder.Path(QStringLiteral("TARN.LOG"))));
}

TEST_F(UIModeTest, Restore_AfterAFailure_PutsFlagCounterAndPointerBack) {
    const UIMode::State before = UIMode::Remember();
    UIMode::BusyOn();
    UIMode::BusyOn();
    UIMode::Restore(before);
    EXPECT_TRUE(UIMode::NotBusy());
    EXPECT_EQ(UIMode::Remember().counter, 0);
    EXPECT_FALSE(Hourglass());
}

}  // namespace
