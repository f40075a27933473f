// What a person reads of an error that no procedure caught.
#include "shell/LastTrap.h"

#include <gtest/gtest.h>

#include "base/UIMode.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/system/Pointer.h"
#include "support/Answers.h"
#include "support/LogFolder.h"

namespace {

class LastTrapTest : public testing::Test {
protected:
    LastTrapTest() { LastTrap::Install(); }
    ~LastTrapTest() override { platform::EventTrap::Install({}); }

    // The box that comes up for an error of a save.
    static support::Message Shown(int number, const QString& subject) {
        const support::Answers answers;
        platform::EventTrap::Run("frm5NVCTable.SaveChanges", [&] {
            platform::Concerning([&] { return subject; },
                                 [&] { throw platform::RuntimeError(number, "It failed."); });
        });
        EXPECT_EQ(answers.Messages().size(), 1U);
        return answers.Messages().empty() ? support::Message() : answers.Messages().front();
    }

    LogFolder folder_;
};

TEST_F(LastTrapTest, Error_IsShownInWordsForPeople_WithTheRestAsDetails) {
    const support::Message box = Shown(3022, "North, location 2");
    EXPECT_EQ(box.title, "TARN Prep");
    EXPECT_EQ(box.text, "North, location 2: It failed.");
    EXPECT_EQ(box.informative, "");
    EXPECT_EQ(box.details, "Error 3022 in frm5NVCTable.SaveChanges");
    EXPECT_EQ(box.buttons, QMessageBox::Ok);
}

TEST_F(LastTrapTest, ErrorOfNothingInParticular_IsShownAsItIs) {
    EXPECT_EQ(Shown(9, QString()).text, "It failed.");
}

TEST_F(LastTrapTest, FullDisk_SaysWhatCanBeDone) {
    EXPECT_TRUE(Shown(platform::kDiskFull, QString()).informative.contains("Make room"));
}

TEST_F(LastTrapTest, BusyModeOfAHandlerThatFails_IsPutBack) {
    const support::Answers answers;
    platform::EventTrap::Run("frm5NVCTable.Setup", [] {
        UIMode::BusyOn();
        UIMode::BusyOn();
        throw platform::RuntimeError(9, "It failed.");
    });
    EXPECT_TRUE(UIMode::NotBusy());
    EXPECT_EQ(UIMode::Remember().counter, 0);
    EXPECT_EQ(platform::MousePointer(), platform::Pointer::kDefault);
}

TEST_F(LastTrapTest, BothLogs_KeepProcedureNumberAndSubject) {
    Shown(3022, "North");
    for (const char* log : {"TARN.LOG", "ERROR.LOG"}) {
        EXPECT_TRUE(
            folder_.Bytes(log).contains("frm5NVCTable.SaveChanges: Error 3022, North: It failed."))
            << log;
    }
}

}  // namespace
